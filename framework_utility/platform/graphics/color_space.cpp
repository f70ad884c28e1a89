#include <framework_utility/platform/graphics/color_space.h>

#include <framework_utility/platform/graphics/color_profile.h>

#include <utility>

namespace FrameworkUtility {

struct CGColorSpace::Contents {
  CGColorSpaceModel model = CGColorSpaceModel::unknown;
  std::size_t numberOfComponents = 0;
  std::optional<std::string> name;
  std::string profileName;
  Data profile;
};

CGColorSpace::CGColorSpace(std::shared_ptr<const Contents> contents)
    : contents_(std::move(contents)) {}

CGColorSpace CGColorSpace::createDeviceRGB() {
  static const CGColorSpace space(std::make_shared<const Contents>(
      Contents{CGColorSpaceModel::rgb, 3, std::string(kCGColorSpaceSRGB), detail::sRGBProfileName,
               detail::makeSRGBProfile()}));
  return space;
}

CGColorSpace CGColorSpace::createDeviceGray() {
  static const CGColorSpace space(std::make_shared<const Contents>(
      Contents{CGColorSpaceModel::monochrome, 1, std::string(kCGColorSpaceGenericGray),
               detail::genericGrayProfileName, detail::makeGenericGrayProfile()}));
  return space;
}

CGColorSpace CGColorSpace::createDeviceCMYK() {
  static const CGColorSpace space(std::make_shared<const Contents>(
      Contents{CGColorSpaceModel::cmyk, 4, std::string(kCGColorSpaceGenericCMYK), {}, {}}));
  return space;
}

std::optional<CGColorSpace> CGColorSpace::createWithName(std::string_view name) {
  if (name == kCGColorSpaceSRGB) return createDeviceRGB();
  if (name == kCGColorSpaceGenericGray) return createDeviceGray();
  if (name == kCGColorSpaceGenericCMYK) return createDeviceCMYK();
  if (name == kCGColorSpaceDisplayP3) {
    static const CGColorSpace space(std::make_shared<const Contents>(
        Contents{CGColorSpaceModel::rgb, 3, std::string(name), detail::displayP3ProfileName,
                 detail::makeDisplayP3Profile()}));
    return space;
  }
  return std::nullopt;
}

std::optional<CGColorSpace> CGColorSpace::createWithICCData(const Data& profile) {
  std::optional<detail::ColorProfile> read = detail::readColorProfile(profile);
  if (!read) return std::nullopt;
  return CGColorSpace(std::make_shared<const Contents>(Contents{
      read->model, read->numberOfComponents, std::nullopt, std::move(read->name), profile}));
}

CGColorSpaceModel CGColorSpace::model() const { return contents_->model; }

std::size_t CGColorSpace::numberOfComponents() const { return contents_->numberOfComponents; }

std::optional<std::string> CGColorSpace::name() const { return contents_->name; }

std::optional<std::string> CGColorSpace::profileName() const {
  if (contents_->profileName.empty()) return std::nullopt;
  return contents_->profileName;
}

std::optional<Data> CGColorSpace::iccData() const {
  if (contents_->profile.empty()) return std::nullopt;
  return contents_->profile;
}

bool operator==(const CGColorSpace& a, const CGColorSpace& b) {
  return a.contents_ == b.contents_ || a.contents_->profile == b.contents_->profile;
}

}  // namespace FrameworkUtility

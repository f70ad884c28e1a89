#include <framework_utility/platform/graphics/color_profile.h>

#include <framework_utility/platform/foundation/values/utf8.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include <lcms2.h>
#include <lcms2_plugin.h>

namespace FrameworkUtility::detail {

namespace {

// The only memory that a profile can make the library ask for. A count in a few hostile bytes would
// otherwise have half a gigabyte allocated and cleared.

constexpr cmsUInt32Number maximumAllocation = 2 * maximumProfileBytes;

void* allocate(cmsContext, cmsUInt32Number size) {
  return size <= maximumAllocation ? std::malloc(size) : nullptr;
}

void release(cmsContext, void* pointer) { std::free(pointer); }

void* reallocate(cmsContext, void* pointer, cmsUInt32Number size) {
  return size <= maximumAllocation ? std::realloc(pointer, size) : nullptr;
}

void ignoreError(cmsContext, cmsUInt32Number, const char*) {}

template <class T, auto free>
struct FreeWith {
  void operator()(T* object) const { free(object); }
};

template <class T, auto free>
using Owned = std::unique_ptr<T, FreeWith<T, free>>;
using Context = Owned<_cmsContext_struct, cmsDeleteContext>;
using Curve = Owned<cmsToneCurve, cmsFreeToneCurve>;
using Texts = Owned<cmsMLU, cmsMLUfree>;
// The library's handle is a plain pointer to void.
using Profile = Owned<void, cmsCloseProfile>;
using Transform = Owned<void, cmsDeleteTransform>;

/// A context of our own, so that neither errors nor plug-ins are shared with the app.
Context makeContext() {
  cmsPluginMemHandler memory{};
  memory.base = {cmsPluginMagicNumber, 2000, cmsPluginMemHandlerSig, nullptr};
  memory.MallocPtr = allocate;
  memory.FreePtr = release;
  memory.ReallocPtr = reallocate;
  Context context(cmsCreateContext(&memory, nullptr));
  if (context) cmsSetLogErrorHandlerTHR(context.get(), ignoreError);
  return context;
}

CGColorSpaceModel modelOf(cmsColorSpaceSignature signature) {
  switch (signature) {
    case cmsSigGrayData:
      return CGColorSpaceModel::monochrome;
    case cmsSigRgbData:
      return CGColorSpaceModel::rgb;
    case cmsSigCmykData:
      return CGColorSpaceModel::cmyk;
    case cmsSigLabData:
      return CGColorSpaceModel::lab;
    default:
      return CGColorSpaceModel::unknown;
  }
}

/// Whether the profile of a device, screen, printer or colour space can turn components into
/// colours, by curves and a matrix or by a table.
bool describesPixels(cmsHPROFILE profile) {
  switch (cmsGetDeviceClass(profile)) {
    case cmsSigInputClass:
    case cmsSigDisplayClass:
    case cmsSigOutputClass:
    case cmsSigColorSpaceClass:
      break;
    default:
      return false;
  }
  if (cmsIsMatrixShaper(profile)) return true;
  for (const cmsTagSignature table : {cmsSigAToB0Tag, cmsSigAToB1Tag, cmsSigAToB2Tag,
                                      cmsSigDToB0Tag, cmsSigDToB1Tag, cmsSigDToB2Tag}) {
    if (cmsIsTag(profile, table)) return true;
  }
  return false;
}

/// A wide character is a UTF-16 unit in older releases of the library and a code point in newer
/// ones. What is neither becomes U+FFFD.
std::string utf8FromWide(std::wstring_view wide) {
  std::u16string units;
  for (const wchar_t character : wide.substr(0, wide.find(L'\0'))) {
    const auto c = static_cast<char32_t>(character);
    if (c < 0x10000) {
      units += static_cast<char16_t>(c);
    } else if (c <= 0x10FFFF) {
      units +=
          {static_cast<char16_t>(0xD7C0 + (c >> 10)), static_cast<char16_t>(0xDC00 + (c & 0x3FF))};
    } else {
      units += static_cast<char16_t>(utf8::replacementCharacter);
    }
  }
  return utf8::fromUtf16(units);
}

std::string descriptionOf(cmsHPROFILE profile) {
  const cmsUInt32Number size =
      cmsGetProfileInfo(profile, cmsInfoDescription, "en", "US", nullptr, 0);
  std::vector<wchar_t> wide(size / sizeof(wchar_t));
  if (wide.empty()) return {};
  cmsGetProfileInfo(profile, cmsInfoDescription, "en", "US", wide.data(), size);
  return utf8FromWide({wide.data(), wide.size()});
}

void describe(cmsContext context, cmsHPROFILE profile, const char* name) {
  const Texts description(cmsMLUalloc(context, 1));
  const Texts copyright(cmsMLUalloc(context, 1));
  if (!description || !copyright) return;
  cmsMLUsetASCII(description.get(), "en", "US", name);
  cmsMLUsetASCII(copyright.get(), "en", "US", "No copyright, use freely");
  cmsWriteTag(profile, cmsSigProfileDescriptionTag, description.get());
  cmsWriteTag(profile, cmsSigCopyrightTag, copyright.get());
}

Data bytesOf(cmsHPROFILE profile) {
  cmsUInt32Number size = 0;
  if (!profile || !cmsSaveProfileToMem(profile, nullptr, &size)) return {};
  std::vector<std::byte> bytes(size);
  if (!cmsSaveProfileToMem(profile, bytes.data(), &size)) return {};
  // The header's date, six 16-bit numbers, is that of the first release and not of this moment.
  constexpr std::array<std::uint8_t, 12> date{0x07, 0xE8, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0};
  for (std::size_t i = 0; i < date.size(); ++i) bytes[24 + i] = std::byte{date[i]};
  return Data(std::move(bytes));
}

Data makeRGBProfile(const char* name, const cmsCIExyYTRIPLE& primaries) {
  const Context context = makeContext();
  // IEC 61966-2-1, whose curve Display P3 shares.
  const std::array<cmsFloat64Number, 5> parameters{2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92,
                                                   0.04045};
  const Curve curve(cmsBuildParametricToneCurve(context.get(), 4, parameters.data()));
  std::array<cmsToneCurve*, 3> curves{curve.get(), curve.get(), curve.get()};
  const cmsCIExyY d65{0.3127, 0.3290, 1};
  const Profile profile(cmsCreateRGBProfileTHR(context.get(), &d65, &primaries, curves.data()));
  if (profile) describe(context.get(), profile.get(), name);
  return bytesOf(profile.get());
}

}  // namespace

std::optional<ColorProfile> readColorProfile(std::span<const std::byte> bytes) {
  if (bytes.size() > maximumProfileBytes) return std::nullopt;
  const Context context = makeContext();
  if (!context) return std::nullopt;
  const Profile profile(cmsOpenProfileFromMemTHR(context.get(), bytes.data(),
                                                 static_cast<cmsUInt32Number>(bytes.size())));
  if (!profile || !describesPixels(profile.get())) return std::nullopt;
  const cmsColorSpaceSignature signature = cmsGetColorSpace(profile.get());
  const CGColorSpaceModel model = modelOf(signature);
  if (model == CGColorSpaceModel::unknown) return std::nullopt;
  return ColorProfile{model, cmsChannelsOf(signature), descriptionOf(profile.get())};
}

bool convertToSRGB(std::span<const std::byte> bytes, std::uint8_t* pixels, std::size_t count) {
  const Context context = makeContext();
  if (!context || bytes.size() > maximumProfileBytes) return false;
  const Profile from(cmsOpenProfileFromMemTHR(context.get(), bytes.data(),
                                              static_cast<cmsUInt32Number>(bytes.size())));
  const Profile to(cmsCreate_sRGBProfileTHR(context.get()));
  if (!from || !to || cmsGetColorSpace(from.get()) != cmsSigRgbData) return false;
  const Transform transform(cmsCreateTransformTHR(context.get(), from.get(), TYPE_RGBA_8, to.get(),
                                                  TYPE_RGBA_8, INTENT_PERCEPTUAL,
                                                  cmsFLAGS_COPY_ALPHA));
  if (!transform) return false;
  constexpr std::size_t atOnce = std::size_t{1} << 24;  // the library counts in 32 bits
  for (std::size_t done = 0; done < count; done += atOnce) {
    std::uint8_t* const some = pixels + 4 * done;
    cmsDoTransform(transform.get(), some, some,
                   static_cast<cmsUInt32Number>(std::min(atOnce, count - done)));
  }
  return true;
}

Data makeSRGBProfile() {
  // ITU-R BT.709
  return makeRGBProfile(sRGBProfileName, {{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}});
}

Data makeDisplayP3Profile() {
  // SMPTE EG 432-1
  return makeRGBProfile(displayP3ProfileName,
                        {{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}});
}

Data makeGenericGrayProfile() {
  const Context context = makeContext();
  const Curve curve(cmsBuildGamma(context.get(), 2.2));
  const Profile profile(cmsCreateGrayProfileTHR(context.get(), cmsD50_xyY(), curve.get()));
  if (profile) describe(context.get(), profile.get(), genericGrayProfileName);
  return bytesOf(profile.get());
}

}  // namespace FrameworkUtility::detail

#pragma once

#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/graphics/cg_image.h>
#include <framework_utility/platform/imageio/metadata/metadata_blocks.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kvtool {

/// What a user calls it: "JPEG", "PNG", "HEIC".
std::string formatName(const FrameworkUtility::UTType& type);

/// "png", "jpg" or a type's identifier; absent for one that stands for no type.
std::optional<FrameworkUtility::UTType> typeNamed(std::string_view name);

/// What is wrong with writing to `out` as `type`, or, without one, as its extension says; empty for
/// nothing: the format can be written, and the name's extension agrees with it.
std::string problemOfOutput(const std::string& out,
                            const std::optional<FrameworkUtility::UTType>& type);

/// The type that the extension of `out` stands for.
std::optional<FrameworkUtility::UTType> typeOfOutput(const std::string& out);

/// "photo.png" for "a/photo.jpg" and PNG; an extension that says the type already stays.
std::string resultName(const std::string& file, const FrameworkUtility::UTType& type);

/// A picture as the bytes of a file. What stood in a file is given by `blocks`. Absent, and
/// reported as `name`'s problem, when it cannot be encoded.
std::optional<FrameworkUtility::Data> encodedPicture(
    const FrameworkUtility::CGImage& picture, const FrameworkUtility::UTType& type,
    const std::string& name, const FrameworkUtility::Dictionary& properties = {},
    const std::shared_ptr<const FrameworkUtility::MetadataBlocks>& blocks = nullptr);

/// Writes a picture of this type under exactly this name, as `writeOutput` does.
[[nodiscard]] bool writePicture(const FrameworkUtility::CGImage& picture,
                                const FrameworkUtility::UTType& type, const std::string& name);

}  // namespace kvtool

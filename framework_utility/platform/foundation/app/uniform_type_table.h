#pragma once

#include <cstddef>
#include <iterator>
#include <string_view>

namespace FrameworkUtility::detail {

/// One row of the table of declared types. Lists are separated by blanks.
struct DeclaredType {
  std::string_view identifier;
  std::string_view extensions;  ///< Lower case, the preferred one first.
  std::string_view conformsTo;  ///< Types that stand above this row.
};

/// What the phone platform's own declarations say of the types that files of photos, videos, sounds
/// and documents have. An extension in two rows belongs to the first that fits.
inline constexpr DeclaredType declaredTypes[] = {
    {"public.item", "", ""},
    {"public.content", "", ""},
    {"public.data", "", "public.item"},
    {"public.directory", "", "public.item"},
    {"public.executable", "", "public.item"},
    {"public.archive", "", ""},
    {"public.font", "", ""},
    {"public.composite-content", "", "public.content"},
    {"public.3d-content", "", "public.content"},

    {"public.image", "", "public.data public.content"},
    {"public.jpeg", "jpeg jpg jpe", "public.image"},
    {"public.png", "png", "public.image"},
    {"com.compuserve.gif", "gif", "public.image"},
    {"public.tiff", "tiff tif", "public.image"},
    {"public.heif-standard", "", "public.image"},
    {"public.heif", "heif hif", "public.heif-standard"},
    {"public.heic", "heic", "public.heif-standard"},
    {"public.heics", "heics", "public.heif-standard"},
    {"public.avif", "avif", "public.heif-standard"},
    {"org.webmproject.webp", "webp", "public.image"},
    {"public.jpeg-2000", "jp2 jpf jpx j2k", "public.image"},
    {"public.jpeg-xl", "jxl", "public.image"},
    {"com.microsoft.bmp", "bmp dib", "public.image"},
    {"com.microsoft.ico", "ico", "public.image"},
    {"com.apple.icns", "icns", "public.image"},
    {"public.svg-image", "svg svgz", "public.image"},
    {"public.camera-raw-image", "", "public.image"},
    {"com.adobe.raw-image", "dng", "public.image"},
    {"com.canon.cr2-raw-image", "cr2", "public.camera-raw-image"},
    {"com.nikon.raw-image", "nef", "public.camera-raw-image"},
    {"com.sony.arw-raw-image", "arw", "public.camera-raw-image"},
    {"com.adobe.photoshop-image", "psd", "public.image"},
    {"com.ilm.openexr-image", "exr", "public.image"},
    {"com.truevision.tga-image", "tga", "public.image"},

    {"public.audiovisual-content", "", "public.data public.content"},
    {"public.movie", "", "public.audiovisual-content"},
    {"public.video", "", "public.movie"},
    {"com.apple.quicktime-movie", "mov qt", "public.movie"},
    {"public.mpeg-4", "mp4 mpg4", "public.movie"},
    {"com.apple.m4v-video", "m4v", "public.mpeg-4"},
    {"public.mpeg", "mpg mpeg m1s", "public.movie"},
    {"public.mpeg-2-transport-stream", "ts", "public.movie"},
    {"public.avi", "avi", "public.movie"},
    {"public.3gpp", "3gp", "public.movie"},
    {"public.3gpp2", "3g2", "public.movie"},
    {"public.audio", "", "public.audiovisual-content"},
    {"public.mp3", "mp3 mpga", "public.audio"},
    {"public.mpeg-4-audio", "mp4 mpg4", "public.mpeg-4 public.audio"},
    {"com.apple.m4a-audio", "m4a", "public.mpeg-4-audio"},
    {"public.aac-audio", "aac adts", "public.audio"},
    {"com.microsoft.waveform-audio", "wav wave", "public.audio"},
    {"public.aifc-audio", "aifc", "public.audio"},
    {"public.aiff-audio", "aiff aif", "public.aifc-audio"},
    {"com.apple.coreaudio-format", "caf", "public.audio"},
    {"org.xiph.flac", "flac", "public.audio"},
    {"public.midi-audio", "midi mid", "public.audio"},

    {"public.text", "", "public.data public.content"},
    {"public.plain-text", "txt text", "public.text"},
    {"public.html", "html htm", "public.text"},
    {"public.xml", "xml", "public.text"},
    {"public.json", "json", "public.text"},
    {"public.rtf", "rtf", "public.text"},
    {"public.delimited-values-text", "", "public.text"},
    {"public.comma-separated-values-text", "csv", "public.delimited-values-text"},
    {"net.daringfireball.markdown", "md markdown", "public.plain-text"},
    {"public.source-code", "", "public.plain-text"},
    {"public.swift-source", "swift", "public.source-code"},
    {"public.c-source", "c", "public.source-code"},
    {"public.c-header", "h", "public.source-code"},
    {"public.c-plus-plus-source", "cpp cp c++ cc cxx", "public.source-code"},
    {"public.script", "", "public.source-code"},
    {"com.netscape.javascript-source", "js", "public.source-code public.executable"},
    {"public.shell-script", "sh", "public.script"},
    {"public.python-script", "py", "public.shell-script"},

    {"com.apple.property-list", "plist", "public.data"},
    {"com.adobe.pdf", "pdf", "public.data public.composite-content"},
    {"com.pkware.zip-archive", "", "public.data public.archive"},
    {"public.zip-archive", "zip", "com.pkware.zip-archive"},
    {"org.gnu.gnu-zip-archive", "gz gzip", "public.data public.archive"},
    {"public.tar-archive", "tar", "public.data public.archive"},
    {"public.bzip2-archive", "bz2", "public.data public.archive"},
    {"com.rarlab.rar-archive", "rar", "public.data public.archive"},
    {"org.7-zip.7-zip-archive", "7z", "public.data public.archive"},
    {"org.idpf.epub-container", "epub", "public.data public.composite-content"},
    {"com.pixar.universal-scene-description-mobile", "usdz", "public.data public.3d-content"},
    {"public.truetype-ttf-font", "ttf", "public.font"},

    {"com.apple.package", "", "public.directory"},
    {"com.apple.bundle", "", "public.directory"},
    {"com.apple.rtfd", "rtfd", "com.apple.package public.composite-content"},
    {"com.apple.application", "", "public.executable"},
    {"com.apple.application-bundle", "app",
     "com.apple.application com.apple.bundle com.apple.package"},
    {"com.apple.framework", "framework", "com.apple.bundle"},
    {"com.apple.generic-bundle", "bundle", "com.apple.bundle com.apple.package"},
    {"com.apple.xpc-service", "xpc", "com.apple.bundle com.apple.package"},
    {"com.apple.plugin", "plugin", "com.apple.bundle com.apple.package"},
    {"com.apple.photos.library", "photoslibrary", "com.apple.package"},
};

inline constexpr std::size_t declaredTypeCount = std::size(declaredTypes);

/// The row of a declared type; the number of rows when there is none. No pointer that may be null:
/// under g++'s sanitizers a comparison with null is no constant expression.
constexpr std::size_t declaredTypeRow(std::string_view identifier) {
  std::size_t row = 0;
  while (row < declaredTypeCount && declaredTypes[row].identifier != identifier) ++row;
  return row;
}

/// Whether `test` holds for a word of `list`, asked in order up to the first that it holds for.
template <class Test>
constexpr bool anyWord(std::string_view list, Test test) {
  while (!list.empty()) {
    const std::string_view word = list.substr(0, list.find(' '));
    if (test(word)) return true;
    list.remove_prefix(word.size() < list.size() ? word.size() + 1 : word.size());
  }
  return false;
}

}  // namespace FrameworkUtility::detail

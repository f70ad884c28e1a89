#include <tests/platform/imageio/formats/png_file.h>

#include <cstdlib>

#include <png.h>
#include <zlib.h>

namespace FrameworkUtility::testing {

namespace {

void appendNumber(Bytes& bytes, std::uint32_t number) {
  for (const int shift : {24, 16, 8, 0}) {
    bytes.push_back(static_cast<std::uint8_t>(number >> shift));
  }
}

void append(png_structp png, png_bytep bytes, std::size_t count) {
  auto* out = static_cast<Bytes*>(png_get_io_ptr(png));
  out->insert(out->end(), bytes, bytes + count);
}

}  // namespace

PngFile::PngFile() : bytes_{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'} {}

PngFile& PngFile::chunk(std::string_view type, const Bytes& data) {
  appendNumber(bytes_, static_cast<std::uint32_t>(data.size()));
  const std::size_t begin = bytes_.size();
  bytes_.insert(bytes_.end(), type.begin(), type.end());
  bytes_.insert(bytes_.end(), data.begin(), data.end());
  appendNumber(
      bytes_, static_cast<std::uint32_t>(crc32_z(0, bytes_.data() + begin, bytes_.size() - begin)));
  return *this;
}

PngFile& PngFile::chunk(std::string_view type, std::string_view data) {
  return chunk(type, Bytes(data.begin(), data.end()));
}

PngFile& PngFile::header(std::uint32_t width, std::uint32_t height, int depth, int colorType,
                         int interlacing) {
  Bytes data;
  appendNumber(data, width);
  appendNumber(data, height);
  for (const int value : {depth, colorType, 0, 0, interlacing}) {
    data.push_back(static_cast<std::uint8_t>(value));
  }
  return chunk("IHDR", data);
}

PngFile& PngFile::pixelAndEnd() {
  using namespace std::string_view_literals;
  return chunk("IDAT", deflated("\0\0"sv)).chunk("IEND", "");
}

Bytes deflated(std::string_view text) {
  uLongf size = compressBound(static_cast<uLong>(text.size()));
  Bytes bytes(size);
  compress(bytes.data(), &size, reinterpret_cast<const Bytef*>(text.data()),
           static_cast<uLong>(text.size()));
  bytes.resize(size);
  return bytes;
}

Data writtenByLibpng(const PngPicture& picture) {
  Bytes bytes;
  png_structp png = png_create_write_struct(
      PNG_LIBPNG_VER_STRING, nullptr, [](png_structp, png_const_charp) { std::abort(); }, nullptr);
  png_infop info = png_create_info_struct(png);
  png_set_write_fn(png, &bytes, append, [](png_structp) {});
  png_set_IHDR(png, info, picture.width, picture.height, picture.depth, picture.colorType,
               picture.isInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, 0, 0);
  if (!picture.palette.empty()) {
    png_set_PLTE(png, info, reinterpret_cast<const png_color*>(picture.palette.data()),
                 static_cast<int>(picture.palette.size() / 3));
  }
  png_color_16 sample{};
  const std::vector<std::uint32_t>& samples = picture.transparentSample;
  png_uint_16* colors[] = {&sample.red, &sample.green, &sample.blue};
  if (samples.size() == 1) colors[0] = &sample.gray;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    *colors[i] = static_cast<png_uint_16>(samples[i]);
  }
  if (!picture.transparency.empty() || !samples.empty()) {
    png_set_tRNS(png, info, picture.transparency.empty() ? nullptr : picture.transparency.data(),
                 static_cast<int>(picture.transparency.size()), &sample);
  }
  const std::size_t rowBytes = picture.rows.size() / picture.height;
  std::vector<png_bytep> rows(picture.height);
  for (std::size_t y = 0; y < rows.size(); ++y) {
    rows[y] = const_cast<png_bytep>(picture.rows.data() + y * rowBytes);
  }
  png_set_rows(png, info, rows.data());
  png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
  png_destroy_write_struct(&png, &info);
  return Data(std::as_bytes(std::span(bytes)));
}

}  // namespace FrameworkUtility::testing

#include "tools/lib/tables/PngImage.h"

#ifdef PC_HAVE_PNG
#include <png.h>
#endif

#include <cstdio>
#include <cstring>
#include <memory>

#include "tools/lib/common/FileAccess.h"

namespace pctool {

std::string PngColour::text() const {
  if (!icc.empty()) return "iCCP profile '" + iccName + "'";
  if (srgb) return "sRGB";
  std::string s;
  char buf[160];
  if (gamma > 0) {
    std::snprintf(buf, sizeof buf, "gAMA %.5f", gamma);
    s = buf;
  }
  if (hasChrm) {
    std::snprintf(buf, sizeof buf, "cHRM white %.4f %.4f, red %.4f %.4f, green %.4f %.4f, blue %.4f %.4f", chrm[0],
                  chrm[1], chrm[2], chrm[3], chrm[4], chrm[5], chrm[6], chrm[7]);
    s += (s.empty() ? "" : ", ") + std::string(buf);
  }
  return s.empty() ? "untagged" : s;
}

#ifdef PC_HAVE_PNG

namespace {

// What libpng works on between our calls. It lives on the heap and the functions that call
// libpng hold nothing with a destructor, so libpng's longjmp on an error skips nothing.
struct PngIo {
  png_structp png = nullptr;
  png_infop info = nullptr;
  bool writing = false;
  std::string message;  // libpng's error
  std::string warnings;
  const std::string* in = nullptr;
  size_t pos = 0;
  std::string out;
  ~PngIo() {
    if (png != nullptr && writing) png_destroy_write_struct(&png, &info);
    if (png != nullptr && !writing) png_destroy_read_struct(&png, &info, nullptr);
  }
};

void onError(png_structp png, png_const_charp msg) {
  static_cast<PngIo*>(png_get_error_ptr(png))->message = msg;
  png_longjmp(png, 1);
}

void onWarning(png_structp png, png_const_charp msg) {
  auto* io = static_cast<PngIo*>(png_get_error_ptr(png));
  io->warnings += (io->warnings.empty() ? "" : "; ") + std::string(msg);
}

void readBytes(png_structp png, png_bytep data, size_t n) {
  auto* io = static_cast<PngIo*>(png_get_io_ptr(png));
  if (io->in->size() - io->pos < n) png_error(png, "file ends inside the image");
  std::memcpy(data, io->in->data() + io->pos, n);
  io->pos += n;
}

void writeBytes(png_structp png, png_bytep data, size_t n) {
  static_cast<PngIo*>(png_get_io_ptr(png))->out.append(reinterpret_cast<const char*>(data), n);
}

void flushNothing(png_structp) {}

// The chunk types before the image data.
std::string chunksBeforeData(const std::string& bytes) {
  std::string types;
  for (size_t at = 8; at + 8 <= bytes.size();) {
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data() + at);
    const uint32_t length = uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3];
    const std::string type = bytes.substr(at + 4, 4);
    if (type == "IDAT") break;
    types += type + " ";
    if (length > bytes.size()) break;
    at += 12 + size_t(length);
  }
  return types;
}

// Header, transforms to 8- or 16-bit RGB(A), then the sizes; false with io->message.
bool readHeader(PngIo* io, uint32_t* size, int* channels, int* depth) {
  if (setjmp(png_jmpbuf(io->png))) return false;
  png_set_read_fn(io->png, io, readBytes);
  png_set_benign_errors(io->png, 1);
  png_read_info(io->png, io->info);
  const int type = png_get_color_type(io->png, io->info);
  if (type == PNG_COLOR_TYPE_PALETTE) png_set_palette_to_rgb(io->png);
  if (type == PNG_COLOR_TYPE_GRAY && png_get_bit_depth(io->png, io->info) < 8) png_set_expand_gray_1_2_4_to_8(io->png);
  if (png_get_valid(io->png, io->info, PNG_INFO_tRNS)) png_set_tRNS_to_alpha(io->png);
  if (!(type & PNG_COLOR_MASK_COLOR)) png_set_gray_to_rgb(io->png);
  png_set_interlace_handling(io->png);
  png_read_update_info(io->png, io->info);
  size[0] = png_get_image_width(io->png, io->info);
  size[1] = png_get_image_height(io->png, io->info);
  *channels = png_get_channels(io->png, io->info);
  *depth = png_get_bit_depth(io->png, io->info);
  return true;
}

bool readRows(PngIo* io, png_bytep* rows) {
  if (setjmp(png_jmpbuf(io->png))) return false;
  png_read_image(io->png, rows);
  png_read_end(io->png, nullptr);
  return true;
}

// The colour chunks the file has, as libpng took them; false when libpng dropped one.
bool readColour(PngIo* io, const std::string& chunks, PngColour& c, std::string& error) {
  auto had = [&](const char* type) { return chunks.find(std::string(type) + " ") != std::string::npos; };
  png_charp name = nullptr;
  png_bytep profile = nullptr;
  png_uint_32 length = 0;
  int compression = 0, intent = 0;
  if (had("iCCP") && png_get_iCCP(io->png, io->info, &name, &compression, &profile, &length) != 0) {
    c.iccName = name;
    c.icc.assign(reinterpret_cast<const char*>(profile), length);
  }
  c.srgb = had("sRGB") && png_get_sRGB(io->png, io->info, &intent) != 0;
  if (had("gAMA")) png_get_gAMA(io->png, io->info, &c.gamma);
  c.hasChrm = had("cHRM") && png_get_cHRM(io->png, io->info, &c.chrm[0], &c.chrm[1], &c.chrm[2], &c.chrm[3],
                                         &c.chrm[4], &c.chrm[5], &c.chrm[6], &c.chrm[7]) != 0;
  const char* dropped = had("iCCP") && c.icc.empty() ? "iCCP"
                        : had("sRGB") && !c.srgb     ? "sRGB"
                        : had("gAMA") && !(c.gamma > 0) ? "gAMA"
                        : had("cHRM") && !c.hasChrm  ? "cHRM"
                                                     : nullptr;
  if (dropped != nullptr)
    error = std::string(dropped) + " chunk not usable (" + (io->warnings.empty() ? "invalid" : io->warnings) +
            "): the image's colours are unknown";
  else if (had("cICP"))
    error = "cICP chunk: its colour coding is not read here, so the image's colours are unknown";
  return error.empty();
}

bool writeImage(PngIo* io, const Image* img, png_bytep* rows, png_text* text, int texts) {
  if (setjmp(png_jmpbuf(io->png))) return false;
  png_set_write_fn(io->png, io, writeBytes, flushNothing);
  png_set_IHDR(io->png, io->info, img->width, img->height, img->depth,
               img->channels == 4 ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_text(io->png, io->info, text, texts);
  png_write_info(io->png, io->info);
  png_write_image(io->png, rows);
  png_write_end(io->png, nullptr);
  return true;
}

}  // namespace

bool PngImage::available() { return true; }

bool PngImage::read(const std::string& path, Image& img, std::string& error) {
  img = Image{};
  std::string bytes;
  if (!readInputFile(path, kMaxFileBytes, bytes, error)) return false;
  if (bytes.size() > kMaxFileBytes) return error = "larger than 1 GiB", false;
  if (bytes.size() < 8 || png_sig_cmp(reinterpret_cast<png_const_bytep>(bytes.data()), 0, 8) != 0)
    return error = "not a readable PNG: no PNG signature", false;
  auto io = std::make_unique<PngIo>();
  io->in = &bytes;
  io->png = png_create_read_struct(PNG_LIBPNG_VER_STRING, io.get(), onError, onWarning);
  io->info = io->png ? png_create_info_struct(io->png) : nullptr;
  if (io->info == nullptr) return error = "out of memory", false;
  uint32_t size[2] = {0, 0};
  if (!readHeader(io.get(), size, &img.channels, &img.depth)) return error = "not a readable PNG: " + io->message, false;
  if (uint64_t(size[0]) * size[1] > kMaxPixels)
    return error = "image of " + std::to_string(size[0]) + " x " + std::to_string(size[1]) + " pixels: more than " +
                   std::to_string(kMaxPixels) + " pixels",
           false;
  if (!readColour(io.get(), chunksBeforeData(bytes), img.colour, error)) return false;
  const size_t rowBytes = png_get_rowbytes(io->png, io->info);
  std::vector<png_byte> pixels(rowBytes * size[1]);
  std::vector<png_bytep> rows(size[1]);
  for (uint32_t y = 0; y < size[1]; ++y) rows[y] = pixels.data() + y * rowBytes;
  if (!readRows(io.get(), rows.data())) return error = "damaged PNG: " + io->message, false;
  img.width = size[0];
  img.height = size[1];
  const size_t count = size_t(img.width) * img.height * img.channels;
  img.samples.resize(count);
  for (size_t i = 0; i < count; ++i)  // 16-bit samples are big-endian in the file
    img.samples[i] = img.depth == 16 ? uint16_t(pixels[2 * i] << 8 | pixels[2 * i + 1]) : pixels[i];
  return true;
}

bool PngImage::write(const std::string& path, const Image& img, const std::string& description, std::string& error) {
  auto io = std::make_unique<PngIo>();
  io->writing = true;
  io->png = png_create_write_struct(PNG_LIBPNG_VER_STRING, io.get(), onError, onWarning);
  io->info = io->png ? png_create_info_struct(io->png) : nullptr;
  if (io->info == nullptr) return error = "out of memory", false;
  const size_t bytesPer = img.depth == 16 ? 2 : 1, rowBytes = size_t(img.width) * img.channels * bytesPer;
  std::vector<png_byte> pixels(rowBytes * img.height);
  for (size_t i = 0; i < img.samples.size() && i * bytesPer < pixels.size(); ++i) {
    if (bytesPer == 2) pixels[2 * i] = png_byte(img.samples[i] >> 8);
    pixels[bytesPer * i + bytesPer - 1] = png_byte(img.samples[i] & 0xff);
  }
  std::vector<png_bytep> rows(img.height);
  for (uint32_t y = 0; y < img.height; ++y) rows[y] = pixels.data() + y * rowBytes;
  std::string key = "Description", software = "Software", by = "panelcorvane", what = description;
  png_text text[2] = {};
  text[0].compression = text[1].compression = PNG_TEXT_COMPRESSION_NONE;
  text[0].key = &key[0];
  text[0].text = &what[0];
  text[1].key = &software[0];
  text[1].text = &by[0];
  if (!writeImage(io.get(), &img, rows.data(), text, description.empty() ? 0 : 2))
    return error = "cannot encode PNG: " + io->message, false;
  return writeWholeFile(path, io->out, error);
}

#else

bool PngImage::available() { return false; }

bool PngImage::read(const std::string&, Image&, std::string& error) {
  error = "this build has no libpng (install libpng-dev and rebuild): PNG images cannot be read";
  return false;
}

bool PngImage::write(const std::string&, const Image&, const std::string&, std::string& error) {
  error = "this build has no libpng (install libpng-dev and rebuild): PNG images cannot be written";
  return false;
}

#endif

}  // namespace pctool

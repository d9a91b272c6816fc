#include "tools/lib/tables/PngImage.h"

#ifdef PC_HAVE_PNG
#include <png.h>
#endif

#include "tools/lib/common/FileAccess.h"

namespace pctool {

#ifdef PC_HAVE_PNG

bool PngImage::available() { return true; }

bool PngImage::read(const std::string& path, Image8& img, std::string& error) {
  if (!checkInputFile(path, error)) return false;
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_file(&image, path.c_str())) {
    error = std::string("not a readable PNG: ") + image.message;
    png_image_free(&image);
    return false;
  }
  if (image.format & PNG_FORMAT_FLAG_LINEAR) {
    png_image_free(&image);
    error = "16-bit PNG: only 8-bit images are read";
    return false;
  }
  if (uint64_t(image.width) * image.height > kMaxPixels) {
    error = "image of " + std::to_string(image.width) + " x " + std::to_string(image.height) +
            " pixels: more than " + std::to_string(kMaxPixels) + " pixels";
    png_image_free(&image);
    return false;
  }
  const bool alpha = image.format & PNG_FORMAT_FLAG_ALPHA;
  image.format = alpha ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
  img.width = image.width;
  img.height = image.height;
  img.channels = alpha ? 4 : 3;
  img.pixels.assign(PNG_IMAGE_SIZE(image), 0);
  if (!png_image_finish_read(&image, nullptr, img.pixels.data(), 0, nullptr)) {
    error = std::string("damaged PNG: ") + image.message;
    png_image_free(&image);
    return false;
  }
  return true;
}

bool PngImage::write(const std::string& path, const Image8& img, std::string& error) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = img.width;
  image.height = img.height;
  image.format = img.channels == 4 ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
  // Encoded in memory first, so the file is written (and checked) in one place.
  png_alloc_size_t size = 0;
  if (!png_image_write_to_memory(&image, nullptr, &size, 0, img.pixels.data(), 0, nullptr)) {
    error = std::string("cannot encode PNG: ") + image.message;
    return false;
  }
  std::string bytes(size, '\0');
  if (!png_image_write_to_memory(&image, &bytes[0], &size, 0, img.pixels.data(), 0, nullptr)) {
    error = std::string("cannot encode PNG: ") + image.message;
    return false;
  }
  bytes.resize(size);
  return writeWholeFile(path, bytes, error);
}

#else

bool PngImage::available() { return false; }

bool PngImage::read(const std::string&, Image8&, std::string& error) {
  error = "this build has no libpng (install libpng-dev and rebuild): PNG images cannot be read";
  return false;
}

bool PngImage::write(const std::string&, const Image8&, std::string& error) {
  error = "this build has no libpng (install libpng-dev and rebuild): PNG images cannot be written";
  return false;
}

#endif

}  // namespace pctool

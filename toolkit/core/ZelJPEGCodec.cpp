// JPEG through libjpeg(-turbo). libjpeg reports fatal errors through
// error_exit, whose default calls exit(): ours longjmps back to the call
// instead. Everything that needs destruction when that happens lives
// outside the setjmp frame (no C++ object is created between setjmp and a
// possible longjmp).
#include <csetjmp>
#include <cstdio>

#include <jpeglib.h>
#include <jerror.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "toolkit/core/ZelImageDecoding.h"
#include "toolkit/core/ZelImageEncoding.h"
#include "toolkit/core/ZelImagePixels.h"

ZEL_NAMESPACE_BEGIN

namespace {

struct ErrorManager {
  jpeg_error_mgr base;
  std::jmp_buf jump;
};

[[noreturn]] void errorExit(j_common_ptr info) {
  std::longjmp(reinterpret_cast<ErrorManager*>(info->err)->jump, 1);
}

// Warnings are silent, except a premature end of data: libjpeg would pad a
// truncated file with grey; we refuse it.
void emitMessage(j_common_ptr info, int level) {
  if (level < 0 && info->err->msg_code == JWRN_JPEG_EOF) errorExit(info);
}

void outputMessage(j_common_ptr) {}

void installErrorManager(ErrorManager& errors) {
  jpeg_std_error(&errors.base);
  errors.base.error_exit = errorExit;
  errors.base.emit_message = emitMessage;
  errors.base.output_message = outputMessage;
}

bool acceptableSize(JDIMENSION width, JDIMENSION height) {
  return width > 0 && height > 0 && width <= kZelMaxDecodedImageSide && height <= kZelMaxDecodedImageSide &&
         std::uint64_t{width} * height <= kZelMaxDecodedPixels;
}

// One decoded scanline into the image. CMYK files are read as inverted
// (Adobe) CMYK, as the programs that write them do.
void storeRow(ZelImage& image, int y, const JSAMPLE* row, J_COLOR_SPACE space) {
  for (int x = 0; x < image.width(); ++x) {
    const JSAMPLE* s = row + x * (space == JCS_CMYK ? 4 : 3);
    if (space == JCS_CMYK) {
      auto channel = [k = s[3]](JSAMPLE c) { return static_cast<std::uint8_t>((c * k + 127) / 255); };
      image.setPixel(x, y, ZelPremultipliedPixel(channel(s[0]), channel(s[1]), channel(s[2]), 255));
    } else {
      image.setPixel(x, y, ZelPremultipliedPixel(s[0], s[1], s[2], 255));
    }
  }
}

// Reads the whole image into `image` (made here); returns false on failure.
// `row` is the caller's, so that nothing here needs unwinding.
bool decodeInto(jpeg_decompress_struct& info, std::shared_ptr<ZelImage>& image, std::vector<JSAMPLE>& row) {
  if (jpeg_read_header(&info, TRUE) != JPEG_HEADER_OK) return false;
  const bool cmyk = info.jpeg_color_space == JCS_CMYK || info.jpeg_color_space == JCS_YCCK;
  info.out_color_space = cmyk ? JCS_CMYK : JCS_RGB;
  jpeg_start_decompress(&info);
  if (!acceptableSize(info.output_width, info.output_height)) return false;
  image = std::make_shared<ZelImage>(static_cast<int>(info.output_width), static_cast<int>(info.output_height));
  row.resize(static_cast<std::size_t>(info.output_width) * info.output_components);
  while (info.output_scanline < info.output_height) {
    const int y = static_cast<int>(info.output_scanline);
    JSAMPROW rows[1] = {row.data()};
    if (jpeg_read_scanlines(&info, rows, 1) != 1) return false;
    storeRow(*image, y, row.data(), info.out_color_space);
  }
  jpeg_finish_decompress(&info);
  return true;
}

void fillRow(const ZelImage& image, int y, bool grey, std::vector<JSAMPLE>& row) {
  for (int x = 0; x < image.width(); ++x) {
    const std::uint32_t p = image.pixel(x, y);  // premultiplied: already laid over black
    const JSAMPLE r = (p >> 16) & 0xFF, g = (p >> 8) & 0xFF, b = p & 0xFF;
    if (grey) {
      row[x] = static_cast<JSAMPLE>((r * 299 + g * 587 + b * 114 + 500) / 1000);
    } else {
      row[x * 3] = r;
      row[x * 3 + 1] = g;
      row[x * 3 + 2] = b;
    }
  }
}

bool encodeFrom(jpeg_compress_struct& info, const ZelImage& image, int quality, bool grey,
                std::vector<JSAMPLE>& row) {
  info.image_width = static_cast<JDIMENSION>(image.width());
  info.image_height = static_cast<JDIMENSION>(image.height());
  info.input_components = grey ? 1 : 3;
  info.in_color_space = grey ? JCS_GRAYSCALE : JCS_RGB;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, std::clamp(quality, 1, 100), TRUE);
  jpeg_start_compress(&info, TRUE);
  row.resize(static_cast<std::size_t>(image.width()) * info.input_components);
  for (int y = 0; y < image.height(); ++y) {
    fillRow(image, y, grey, row);
    JSAMPROW rows[1] = {row.data()};
    jpeg_write_scanlines(&info, rows, 1);
  }
  jpeg_finish_compress(&info);
  return true;
}

}  // namespace

std::shared_ptr<ZelImage> ZelDecodeJPEG(std::span<const std::uint8_t> data) {
  if (data.empty()) return nullptr;
  jpeg_decompress_struct info{};
  ErrorManager errors{};
  std::shared_ptr<ZelImage> image;
  std::vector<JSAMPLE> row;
  installErrorManager(errors);
  info.err = &errors.base;
  volatile bool ok = false;
  if (setjmp(errors.jump) == 0) {
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, data.data(), static_cast<unsigned long>(data.size()));
    ok = decodeInto(info, image, row);
  }
  jpeg_destroy_decompress(&info);
  return ok ? image : nullptr;
}

std::vector<std::uint8_t> ZelEncodeJPEG(const ZelImage& image, int quality, bool grey) {
  if (image.width() <= 0 || image.height() <= 0) return {};
  jpeg_compress_struct info{};
  ErrorManager errors{};
  std::vector<JSAMPLE> row;
  unsigned char* buffer = nullptr;
  unsigned long size = 0;
  installErrorManager(errors);
  info.err = &errors.base;
  volatile bool ok = false;
  if (setjmp(errors.jump) == 0) {
    jpeg_create_compress(&info);
    jpeg_mem_dest(&info, &buffer, &size);
    ok = encodeFrom(info, image, quality, grey, row);
  }
  jpeg_destroy_compress(&info);
  std::vector<std::uint8_t> out;
  if (ok && buffer) out.assign(buffer, buffer + size);
  std::free(buffer);
  return out;
}

ZEL_NAMESPACE_END

#include "data/ZROZRFxImageJpeg.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
// The library's header needs FILE and size_t before it.
#include <jpeglib.h>

namespace unstruct {
namespace {

// The codec reports a fatal error through a function that must not return, hence the jump. Nothing
// that a function between the jump and its target owns has a destructor.
struct Codec {
    jpeg_error_mgr errors;
    jpeg_progress_mgr progress;
    std::jmp_buf onError;
};

[[noreturn]] void jumpToCaller(j_common_ptr info) {
    std::longjmp(static_cast<Codec*>(info->client_data)->onError, 1);
}

void ignoreMessage(j_common_ptr) {}

void refuseEndlessScans(j_common_ptr info) {
    if (!info->is_decompressor) return;
    const auto* decoder = reinterpret_cast<j_decompress_ptr>(info);
    if (decoder->input_scan_number > ZRFxImageJpeg::kMostScans) jumpToCaller(info);
}

template <typename Info>
void connect(Info& info, Codec& codec) {
    info.err = jpeg_std_error(&codec.errors);
    codec.errors.error_exit = jumpToCaller;
    codec.errors.output_message = ignoreMessage;
    info.client_data = &codec;
}

bool isLegalLength(unsigned int pixels) {
    return pixels > 0 && pixels <= JPEG_MAX_DIMENSION;
}

void encodeRows(jpeg_compress_struct& encoder, const nuo::Image& image, const JSAMPLE* rgb) {
    encoder.image_width = image.width();
    encoder.image_height = image.height();
    encoder.input_components = 3;
    encoder.in_color_space = JCS_RGB;
    jpeg_set_defaults(&encoder);
    jpeg_set_quality(&encoder, ZRFxImageJpeg::kQuality, TRUE);
    jpeg_start_compress(&encoder, TRUE);
    while (encoder.next_scanline < encoder.image_height) {
        auto* row =
            const_cast<JSAMPROW>(rgb + std::size_t{3} * image.width() * encoder.next_scanline);
        jpeg_write_scanlines(&encoder, &row, 1);
    }
    jpeg_finish_compress(&encoder);
}

// On success the caller owns `buffer`, made by malloc. On failure, which with a legal size only a
// lack of memory brings, the codec does not tell which of its buffers is still there.
bool encode(const nuo::Image& image, const JSAMPLE* rgb, unsigned char** buffer,
            unsigned long* numBytes) {
    Codec codec{};
    jpeg_compress_struct encoder{};
    connect(encoder, codec);
    if (setjmp(codec.onError)) {
        jpeg_destroy_compress(&encoder);
        return false;
    }
    jpeg_create_compress(&encoder);
    encoder.client_data = &codec;
    jpeg_mem_dest(&encoder, buffer, numBytes);
    encodeRows(encoder, image, rgb);
    jpeg_destroy_compress(&encoder);
    return true;
}

bool isPlausible(const jpeg_decompress_struct& decoder, std::size_t numBytes) {
    const std::size_t decoded = std::size_t{3} * decoder.image_width * decoder.image_height;
    return decoded <= numBytes * ZRFxImageJpeg::kMostExpansion;
}

// `rgb` is made by malloc here and stays with the caller in every case.
bool decode(const unsigned char* bytes, std::size_t numBytes, unsigned char** rgb,
            unsigned int* width, unsigned int* height) {
    Codec codec{};
    jpeg_decompress_struct decoder{};
    connect(decoder, codec);
    if (setjmp(codec.onError)) {
        jpeg_destroy_decompress(&decoder);
        return false;
    }
    jpeg_create_decompress(&decoder);
    decoder.client_data = &codec;
    codec.progress.progress_monitor = refuseEndlessScans;
    decoder.progress = &codec.progress;
    jpeg_mem_src(&decoder, bytes, numBytes);
    jpeg_read_header(&decoder, TRUE);
    if (!isPlausible(decoder, numBytes)) jumpToCaller(reinterpret_cast<j_common_ptr>(&decoder));
    decoder.out_color_space = JCS_RGB;
    jpeg_start_decompress(&decoder);
    const std::size_t rowBytes = std::size_t{3} * decoder.output_width;
    *rgb = static_cast<unsigned char*>(std::malloc(rowBytes * decoder.output_height));
    if (!*rgb) jumpToCaller(reinterpret_cast<j_common_ptr>(&decoder));
    while (decoder.output_scanline < decoder.output_height) {
        JSAMPROW row = *rgb + rowBytes * decoder.output_scanline;
        jpeg_read_scanlines(&decoder, &row, 1);
    }
    *width = decoder.output_width;
    *height = decoder.output_height;
    jpeg_destroy_decompress(&decoder);
    return true;
}

}  // namespace

bool ZRFxImageJpeg::Encode(const nuo::Image& image, ZRUbyteArray* bytes) {
    NVF_ASSERT(bytes);
    if (!bytes || !isLegalLength(image.width()) || !isLegalLength(image.height())) return false;
    ZRUbyteArray rgb;
    if (!rgb.SetSize(std::int64_t{3} * image.width() * image.height())) return false;
    image.getAsRgb(rgb.WritableData(), static_cast<std::size_t>(rgb.GetSize()));
    unsigned char* buffer = nullptr;
    unsigned long numBytes = 0;
    if (!encode(image, rgb.Data(), &buffer, &numBytes)) return false;
    bytes->Adopt(buffer, static_cast<std::int64_t>(numBytes));
    return true;
}

bool ZRFxImageJpeg::Decode(const unsigned char* bytes, std::size_t numBytes, nuo::Image* image) {
    NVF_ASSERT(image);
    if (!image || !bytes) return false;
    unsigned char* rgb = nullptr;
    unsigned int width = 0;
    unsigned int height = 0;
    const bool isDecoded =
        decode(bytes, numBytes, &rgb, &width, &height) && image->setFromRgb(rgb, width, height);
    std::free(rgb);
    return isDecoded;
}

}  // namespace unstruct

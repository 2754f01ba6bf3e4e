// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/PngWriter.h"

#include <fcntl.h>
#include <png.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tools/zvtext/Failure.h"

namespace zvtext {

namespace {

// libpng reports errors through a message callback and a long jump; the message is kept for ours.
struct PngError {
    char text[160] = "";
};

void onPngError(png_structp png, png_const_charp message) {
    auto* error = static_cast<PngError*>(png_get_error_ptr(png));
    std::snprintf(error->text, sizeof error->text, "%s", message);
    png_longjmp(png, 1);
}

void onPngWarning(png_structp, png_const_charp) {}

// Encodes to an open stream; false with `error` filled where libpng or the stream fails. No object with a
// destructor lives across the long jump.
bool encode(const Picture& picture, std::FILE* stream, unsigned char* row, PngError& error) {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &error, onPngError, onPngWarning);
    if (png == nullptr) return false;
    png_infop info = png_create_info_struct(png);
    if (info == nullptr || setjmp(png_jmpbuf(png)) != 0) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_init_io(png, stream);
    png_set_user_limits(png, 0x7fffffff, 0x7fffffff);
    const auto width = static_cast<png_uint_32>(picture.width);
    const auto height = static_cast<png_uint_32>(picture.height);
    png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
    png_write_info(png, info);
    for (png_uint_32 y = 0; y < height; ++y) {
        const uint32_t* source = picture.pixels.data() + static_cast<size_t>(y) * width;
        for (png_uint_32 x = 0; x < width; ++x) {
            row[4 * x + 0] = static_cast<unsigned char>(source[x] >> 16);
            row[4 * x + 1] = static_cast<unsigned char>(source[x] >> 8);
            row[4 * x + 2] = static_cast<unsigned char>(source[x]);
            row[4 * x + 3] = static_cast<unsigned char>(source[x] >> 24);
        }
        png_write_row(png, row);
    }
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return true;
}

std::string reason(const PngError& error) {
    return error.text[0] != '\0' ? error.text : std::strerror(errno != 0 ? errno : ENOMEM);
}

void writeInPlace(const Picture& picture, const std::string& path, const std::string& option,
                  unsigned char* row) {
    PngError error;
    std::FILE* stream = std::fopen(path.c_str(), "wb");
    bool whole = stream != nullptr && encode(picture, stream, row, error);
    const std::string why = whole ? "" : reason(error);
    if (stream != nullptr && std::fclose(stream) != 0) whole = false;
    if (!whole)
        throw Failure(option + ": cannot write '" + path +
                      "': " + (why.empty() ? std::strerror(errno) : why));
}

}  // namespace

void writePng(const Picture& picture, const std::string& path, const std::string& option) {
    std::vector<unsigned char> row(static_cast<size_t>(picture.width) * 4);
    PngError error;
    errno = 0;
    if (path == "-") {
        if (!encode(picture, stdout, row.data(), error) || std::fflush(stdout) != 0) {
            throw Failure(option + ": cannot write to standard output: " + reason(error));
        }
        return;
    }
    struct stat existing;
    std::string target = path;
    if (stat(path.c_str(), &existing) == 0) {
        if (S_ISDIR(existing.st_mode)) throw Failure(option + ": '" + path + "' is a folder");
        // A device or a pipe is written to, never replaced; behind a link, the file it leads to is replaced.
        if (!S_ISREG(existing.st_mode)) {
            writeInPlace(picture, path, option, row.data());
            return;
        }
        if (char* resolved = realpath(path.c_str(), nullptr)) {
            target = resolved;
            std::free(resolved);
        }
    }
    std::string temporary = target + ".XXXXXX";
    const int descriptor = mkstemp(&temporary[0]);
    if (descriptor < 0) throw Failure(option + ": cannot write '" + path + "': " + std::strerror(errno));
    // mkstemp makes the file private; a picture gets the mode that any new file of this process would have.
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(descriptor, 0666 & ~mask);
    std::FILE* stream = fdopen(descriptor, "wb");
    errno = 0;
    bool whole = stream != nullptr && encode(picture, stream, row.data(), error);
    whole = whole && std::fflush(stream) == 0 && fsync(descriptor) == 0;
    std::string why = whole ? "" : reason(error);
    if ((stream != nullptr ? std::fclose(stream) : close(descriptor)) != 0 && whole) {
        whole = false;
        why = std::strerror(errno);
    }
    if (whole && std::rename(temporary.c_str(), target.c_str()) != 0) {
        whole = false;
        why = std::strerror(errno);
    }
    if (!whole) {
        unlink(temporary.c_str());
        throw Failure(option + ": cannot write '" + path + "': " + why);
    }
}

}  // namespace zvtext

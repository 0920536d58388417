// The bound of a whole run: loads and renders the outlines of a font at twice the size with FreeType alone,
// then writes a picture's pixels with libpng alone.
//
//   bench_bare_font FONTFILE HEIGHT PICTURE.png OUT.png      223 codes at twice HEIGHT, then PICTURE written to
//   OUT bench_bare_font --png PICTURE.png OUT.png                the picture alone; prints the seconds of the
//   writing bench_bare_font                                          an empty program

#include <ft2build.h>
#include <png.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>
#include <vector>
#include FT_FREETYPE_H

namespace {

bool RenderAll(const char* file, int height) {
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    if (FT_Init_FreeType(&library) != 0 || FT_New_Face(library, file, 0, &face) != 0) return false;
    FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(2 * height));
    unsigned sum = 0;
    for (FT_ULong code = 33; code <= 255; ++code) {
        if (FT_Load_Char(face, code, FT_LOAD_NO_HINTING | FT_LOAD_RENDER) == 0) sum += face->glyph->bitmap.rows;
    }
    FT_Done_FreeType(library);
    return sum != 0;
}

bool CopyPicture(const char* from, const char* to, bool printTime) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, from) == 0) return false;
    image.format = PNG_FORMAT_BGRA;
    std::vector<png_byte> pixels(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) == 0) return false;

    const std::clock_t start = std::clock();
    std::FILE* const file = std::fopen(to, "wb");
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_set_IHDR(png, info, image.width, image.height, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    png_set_bgr(png);
    for (png_uint_32 y = 0; y < image.height; ++y)
        png_write_row(png, pixels.data() + std::size_t{y} * image.width * 4);
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    std::fclose(file);
    if (printTime) std::printf("%f\n", static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 1) return 0;
    if (argc == 4 && std::string_view(argv[1]) == "--png") return CopyPicture(argv[2], argv[3], true) ? 0 : 1;
    if (argc != 5) return 2;
    return RenderAll(argv[1], std::atoi(argv[2])) && CopyPicture(argv[3], argv[4], false) ? 0 : 1;
}

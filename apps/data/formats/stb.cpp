// The one place where the image libraries are compiled. Files are opened
// elsewhere, with paths of any encoding.
#define STBI_ONLY_PNG
#define STBI_NO_STDIO
#define STB_IMAGE_IMPLEMENTATION
#include <stb/stb_image.h>

// The one place where the font library is compiled.
#define STB_TRUETYPE_IMPLEMENTATION
#include <stb/stb_truetype.h>

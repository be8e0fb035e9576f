// The public header and its reference comments.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "oct_rendering/interface_list.h"

extern "C" int oct_header_error_code(void);

namespace oct::test {
namespace {

// The list has the types of the declarations.
#define OCT_SAME_TYPE(since, family, result, name, parameters) \
  static_assert(std::is_same_v<decltype(name), result parameters>, #name);
OCT_API_LIST(OCT_SAME_TYPE)
#undef OCT_SAME_TYPE

std::string all_headers() {
  std::string text;
  for (const auto& entry : std::filesystem::directory_iterator(OCT_SOURCE_DIR "/include/oct_rendering")) {
    std::ifstream stream(entry.path());
    text.append(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
  }
  return text;
}

TEST(HeaderTest, CompilesAsC) {
  EXPECT_EQ(oct_header_error_code(), -536870912);
  EXPECT_EQ(static_cast<unsigned>(OCT_RENDERER_ERROR), 0xE0000000U);
}

// Every export is declared once, right behind a comment that says what it does, documents each parameter,
// names the thread rule and, if it is younger than the first version, says since when it exists, as the list does.
TEST(HeaderTest, EveryExportIsDocumented) {
  const std::string header = all_headers();
  const std::regex declaration(R"(/\*\*((?:[^*]|\*(?!/))*)\*/\s*OCT_API\s+[^(]*?(\w+)\(([^)]*)\);)");
  const std::regex since(R"(@since (\S+))");
  std::map<std::string, std::string> declared;
  for (std::sregex_iterator found(header.begin(), header.end(), declaration), end; found != end; ++found) {
    const std::string comment = (*found)[1];
    const std::string name = (*found)[2];
    const std::string parameters = (*found)[3];
    std::smatch version;
    const bool young = std::regex_search(comment, version, since);
    EXPECT_TRUE(declared.emplace(name, young ? version[1].str() : "0.1").second) << name;
    EXPECT_NE(comment.find("@brief"), std::string::npos) << name;
    EXPECT_NE(comment.find("@thread"), std::string::npos) << name;
    const std::regex parameter(R"((\w+)\s*(?:,|$))");
    if (parameters == "void") continue;
    for (std::sregex_iterator p(parameters.begin(), parameters.end(), parameter); p != end; ++p) {
      EXPECT_NE(comment.find("@param " + std::string((*p)[1])), std::string::npos) << name << ": " << (*p)[1];
    }
  }
#define OCT_SINCE(since, family, result, name, parameters) {#name, #since},
  constexpr std::pair<const char*, const char*> functions[] = {OCT_API_LIST(OCT_SINCE)};
#undef OCT_SINCE
  std::map<std::string, std::string> listed;
  for (const auto& [name, since] : functions) EXPECT_TRUE(listed.emplace(name, since).second) << name;
  EXPECT_EQ(declared, listed);
}

}  // namespace
}  // namespace oct::test

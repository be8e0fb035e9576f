// octrender panels: several pictures as one figure.
#include <memory>
#include <system_error>

#include "data/figure/figure.h"
#include "data/file_errors.h"
#include "data/formats/png_reader.h"
#include "data/formats/png_writer.h"
#include "octrender/option_values.h"
#include "octrender/output/figure_options.h"
#include "octrender/picture_files.h"
#include "octrender/verbs.h"

namespace oct::app {
namespace panels_verb {
namespace {

constexpr char description_text[] = "Put PNG pictures side by side, with letters above them";

constexpr char footer_text[] = R"(
Pictures keep their size; columns are as wide as their widest picture, rows as high as
their highest. Draw them with the same --size and --text-size to have them match.

Exit codes: 0 written, 2 wrong command line, 3 a picture cannot be read, 4 output cannot be
written.

Examples:
  octrender panels bscan.png enface.png volume.png -o figure.png
  octrender panels day1.png day2.png day3.png -o figure.png --columns 3 --labels before,1h,1d
)";

struct Options {
  std::vector<std::string> inputs;
  std::string output;
  unsigned columns = 0;
  std::string labels;
  FigureOptions figure;
};

// "a", "b", ..., "z", "aa", ...
std::string letter_of(std::size_t number) {
  std::string text;
  for (++number; number > 0; number = (number - 1) / 26) {
    text.insert(text.begin(), static_cast<char>('a' + (number - 1) % 26));
  }
  return text;
}

std::vector<std::string> labels_of(const Options& options) {
  std::vector<std::string> labels;
  const std::size_t count = options.inputs.size();
  if (options.labels == "none") return labels;
  if (options.labels.empty()) {
    for (std::size_t i = 0; i < count; ++i) labels.push_back(letter_of(i));
    return labels;
  }
  for (std::size_t start = 0; start <= options.labels.size();) {
    const std::size_t end = std::min(options.labels.find(',', start), options.labels.size());
    labels.push_back(options.labels.substr(start, end - start));
    start = end + 1;
  }
  if (labels.size() != count) {
    throw CommandLineError("--labels: " + std::to_string(labels.size()) + " labels for " +
                           std::to_string(count) + " pictures");
  }
  return labels;
}

void run(const Options& options, const PngTexts& texts) {
  const std::filesystem::path output = picture_file(options.output, {});
  const FigureStyle style = style_of(options.figure);
  Panels panels;
  panels.columns = options.columns;
  panels.labels = labels_of(options);
  for (const std::string& input : options.inputs) {
    picture_file(options.output, {input});
    panels.pictures.push_back(read_png_picture(from_utf8(input)));
  }
  write_png(output, panels_of(panels, style), texts);
}

}  // namespace
}  // namespace panels_verb

void add_panels_verb(CLI::App& program, const PngTexts& texts) {
  using namespace panels_verb;
  CLI::App* verb = program.add_subcommand("panels", description_text);
  const auto options = std::make_shared<Options>();
  verb->add_option("IN", options->inputs, "Pictures, row by row")->type_name("")->required();
  add_output_option(*verb, options->output)->required();
  verb->add_option("--columns", options->columns,
                   "Pictures side by side (default: as near to a square as\nit goes)")
      ->type_name("N")
      ->check(CLI::Range(1, 100).description(""));
  verb->add_option("--labels", options->labels,
                   "Texts above the pictures, with commas between them, or\nnone (default: a,b,c,...)")
      ->type_name("A,B,...|none");
  add_paper_options(*verb, options->figure);
  verb->add_flag("--transparent", options->figure.transparent, "Without paper; text is for paper of --paper");
  verb->footer(footer_text);
  verb->callback([options, texts] { run(*options, texts); });
}

}  // namespace oct::app

#include "octrender/data_options.h"

#include "data/file_errors.h"
#include "octrender/option_values.h"

namespace oct::app {

const char data_help[] = R"(
Files: .npy and .npz arrays (FILE.npz:NAME is one of several; either memory order), PNG
and gray TIFF images, NRRD (.nrrd, .nhdr), MetaImage (.mha, .mhd), NIfTI-1 (.nii, .nii.gz,
.hdr with .img), a folder of PNG, TIFF or .npy images (in natural order, scan2 before
scan10), samples without a header (--raw), or - for the standard input. Samples are
integers of 8 to 64 bits or floats of 16 to 64 bits of either byte order, and keep their
values: a 16-bit image goes from 0 to 65535. The first bytes tell the format.

Axes: a picture has depth along its rows and A-scans along its columns; what pictures
follow each other along are B-scans: pages of a TIFF file, files of a folder, the first
axis of a .npy array, the third of NRRD, MetaImage and NIfTI files (whose first axis is
that of the columns). --axes names other orders, the slowest axis first: bda is this one,
bad has A-scans along the rows (as --transpose), dba is a stack of en-face pictures. A
file without a header has the order bad, depth fastest, unless --axes names another.
)";

void add_data_options(CLI::App& verb, DataOptions& options) {
  verb.add_option("--raw", options.raw,
                  "Read samples without a header: DxAxB (or DxA), how many\n"
                  "along depth, A-scans and B-scans; a type of\n" +
                      sample_type_names() +
                      "\n(bytes); le or be for the byte order (default: le); +N skips\n"
                      "N bytes at the start, and what follows the samples")
      ->type_name("DxAxB:TYPE[le|be][+N]");
  auto* transpose =
      verb.add_flag("--transpose", options.transpose, "Rows are A-scans, columns depth: --axes bad");
  verb.add_option("--axes", options.axes,
                  "Order of the axes depth, A-scan and B-scan in the file,\nthe slowest first (default: bda; "
                  "of --raw: bad)")
      ->type_name("bda|bad|dba|dab|adb|abd")
      ->excludes(transpose);
}

DataFile data_file(const std::string& name, const DataOptions& options) {
  DataFile file{from_utf8(name), {}, {}};
  if (!options.raw.empty()) file.raw = parse_raw_layout(options.raw);
  if (options.transpose) file.axes = memory_order;
  if (!options.axes.empty()) file.axes = parse_axes(options.axes);
  return file;
}

}  // namespace oct::app

#include "octview/panels/sidebar.h"

#include "octview/model/layer_colors.h"
#include "octview/panels/widgets.h"

namespace oct::app {

void Sidebar::show(Workspace& workspace) {
  const Document& document = workspace.document;
  const bool in_file = !document.files.base.path.empty();
  const bool found = statistics_.follow(document, workspace.now);
  if (found && in_file && statistics_.layers().base)
    follow_data(workspace.state.base, *statistics_.layers().base);
  if (!document) {
    wrapped_text("Drop a file on the window");
    session_.show(workspace);
    return;
  }
  data_.show(workspace);
  looks_.show(workspace, statistics_.layers());
  if (in_file) layers_.show(workspace, statistics_.layers());
  measurements_.show(workspace);
  session_.show(workspace);
}

}  // namespace oct::app

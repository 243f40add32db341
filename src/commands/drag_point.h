#pragma once

namespace zk {

// A drag-teach point that the controller streams: written to the file of the save in progress, which is closed with the
// announced number of points. With no save in progress the point is dropped.
void save_drag_point(int slot, const char* message);

}  // namespace zk

#pragma once

// A header of the host's own, in a folder and under a name that the library has too. So are the two others.
namespace host {
using Number = long;
}

#pragma once

namespace tool {

/// From now on a signal that asks the program to end (interrupt, hang-up, termination) lets it clean up first:
/// calls that wait end with an error, and `CheckStop` throws.
void CatchStops();

/// Throws when such a signal has come.
void CheckStop();

/// Ends the program as the signal would have, if one has come.
void PassStop();

}  // namespace tool

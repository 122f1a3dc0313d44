#pragma once

namespace velto {

/// Gives processor and disk to everybody else first, for the rest of this process and for the
/// threads that it starts from now on. What the system refuses is left as it is.
void runInBackground();

/// The same for the calling thread alone, for the rest of its life.
void runThreadInBackground();

}  // namespace velto

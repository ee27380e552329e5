#pragma once

namespace client {

/// Lets a program of windows write to the terminal that started it, in UTF-8, where the system does not do so by itself. What was
/// redirected stays so, and its lines end as they were written.
void useConsole();

} // namespace client

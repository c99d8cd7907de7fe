#pragma once

namespace visa
{

/// Keeps a connection out of the programs that the application starts: an instrument that accepts a single client would
/// stay occupied for as long as they run.
void closeOnExec(int descriptor) noexcept;

} // namespace visa

#pragma once

namespace command_line
{

/// Whether a person is behind the standard input, or output.
bool inputIsTerminal();
bool outputIsTerminal();

} // namespace command_line

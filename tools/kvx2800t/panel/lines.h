#pragma once

#include "tools/kvx2800t/panel/action.h"

#include <string>
#include <vector>

namespace panel
{

/// How the session was opened, for lines that open it once more.
struct SessionTexts
{
    std::string resource;
    std::string options;
    bool simulated = false;
};

/// The lines of C and of Python that do what an action does: with `vi` a session, `supply` a Supply.
std::vector<std::string> linesOfC(const Action& action, const SessionTexts& session);
std::vector<std::string> linesOfPython(const Action& action, const SessionTexts& session);

/// "5.0": a number as both languages write it, with the fewest digits that are this number and no other.
std::string literal(double value);

} // namespace panel

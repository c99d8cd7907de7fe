#include "platform/common/windows_handle.h"
#include "platform/common/windows_text.h"
#include "tools/common/tool_main.h"

#include <shellapi.h>

#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <string>
#include <vector>

namespace
{

/// Lets a console show UTF-8 as long as the program runs, and every output have line feeds alone, as on other hosts.
class Utf8Output
{
public:
    Utf8Output() : before_(GetConsoleOutputCP())
    {
        SetConsoleOutputCP(CP_UTF8);
        _setmode(_fileno(stdout), _O_BINARY);
        _setmode(_fileno(stderr), _O_BINARY);
    }
    ~Utf8Output() { SetConsoleOutputCP(before_); }
    Utf8Output(const Utf8Output&) = delete;
    Utf8Output& operator=(const Utf8Output&) = delete;

private:
    UINT before_;
};

/// The command line in UTF-8; what main() is given has lost what the code page lacks.
std::vector<std::string> utf8Arguments()
{
    int count = 0;
    const platform::LocalMemory<wchar_t*> wide(CommandLineToArgvW(GetCommandLineW(), &count));
    std::vector<std::string> arguments;
    for (int i = 0; wide != nullptr && i < count; ++i)
        arguments.push_back(platform::utf8Text(wide.get()[i]));
    return arguments;
}

} // namespace

int main()
{
    const Utf8Output output;
    const std::vector<std::string> arguments = utf8Arguments();
    std::vector<const char*> pointers;
    pointers.reserve(arguments.size());
    for (const std::string& argument : arguments)
        pointers.push_back(argument.c_str());
    return toolMain(static_cast<int>(pointers.size()), pointers.data());
}

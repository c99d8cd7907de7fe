/// MinGW's C++ library is linked into the driver, and keeps memory for exceptions that are thrown when there is no
/// other. A program that loads and unloads the driver again and again would lose that memory each time.

namespace __gnu_cxx // NOLINT(bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp): the library's own
{
// Declared in no header of the library.
void __freeres(); // NOLINT(bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp)
} // namespace __gnu_cxx

namespace
{

struct FreeAtUnload
{
    FreeAtUnload() = default;
    FreeAtUnload(const FreeAtUnload&) = delete;
    FreeAtUnload& operator=(const FreeAtUnload&) = delete;
    ~FreeAtUnload() { __gnu_cxx::__freeres(); }
};

const FreeAtUnload freeAtUnload;

} // namespace

#include "tests/support/shared_library.h"

#include <visa.h>

#include <gtest/gtest.h>
#include <winsock2.h>

namespace
{

/// What Winsock says to a program that asks for a socket; 0 when it gives one.
int answerOfWinsock()
{
    const SOCKET handle = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    if (handle == INVALID_SOCKET)
        return WSAGetLastError();
    closesocket(handle);
    return 0;
}

// Nobody else in this program uses Winsock.
TEST(VisaLoading, LeavesWinsockToTheFirstSession)
{
    {
        const kvxtest::SharedLibrary visa(VISA_LIBRARY);
        EXPECT_EQ(answerOfWinsock(), WSANOTINITIALISED);
    }
    const kvxtest::SharedLibrary visa(VISA_LIBRARY);
    EXPECT_EQ(answerOfWinsock(), WSANOTINITIALISED);
    ViSession manager = VI_NULL;
    EXPECT_EQ(visa.find<decltype(viOpenDefaultRM)>("viOpenDefaultRM")(&manager), VI_SUCCESS);
    EXPECT_EQ(answerOfWinsock(), 0);
    EXPECT_EQ(visa.find<decltype(viClose)>("viClose")(manager), VI_SUCCESS);
}

} // namespace

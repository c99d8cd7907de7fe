"""Headers with something more in them. Environment: DOXYGEN, DOXYFILE, HEADERS (the folder of the driver's own)."""

import os
import pathlib
import subprocess

HEADERS = pathlib.Path(os.environ["HEADERS"])

FUSE = """
/**
 * @name Attributes of the fuses
 * They can be read, of one channel, and set, of several.
 * @{
 */
/** ViInt32: what a channel does when the fuse of another one blows. */
#define KVX2800T_ATTR_FUSE_MODE 1150001
/** ViString, read-only: the "maker" of the fuses. */
#define KVX2800T_ATTR_FUSE_MAKER 1150002
/** @} */

/**
 * @name Values of the fuse mode
 * @{
 */
/** It stays on. */
#define KVX2800T_VAL_FUSE_STAYS_ON 0
/** It switches off. */
#define KVX2800T_VAL_FUSE_SWITCHES_OFF 1
/** @} */

/** The fuse has blown. */
#define KVX2800T_ERROR_FUSE_BLOWN ((ViStatus)0xBFFA4FFFUL)

/**
 * @brief Tells how fuses have blown.
 *
 * @param vi           the session.
 * @param channelName  the channel, one.
 * @param limit        amperes.
 * @param times        seconds since each has blown.
 * @param event        receives how many have blown.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryFuse(ViSession vi, ViConstString channelName, ViReal64 limit, const ViReal64 times[],
                                     ViInt32* event);

/**
 * @brief Tells whether fuses have blown.
 *
 * @param vi     the session.
 * @param blown  whether to look at those that have.
 * @param limit  receives amperes.
 * @param event  receives whether there is one.
 * @return 0, or a common status code.
 */
ViStatus _VI_FUNC KVX2800T_QueryFuses(ViSession vi, ViBoolean blown, ViReal64* limit, ViBoolean* event);
"""


def manual_of(folder, addition):
    """Doxygen's output for headers with an addition, in a folder."""
    headers = folder / "api"
    headers.mkdir()
    for header in HEADERS.glob("KVX2800T*.h"):
        text = header.read_text(encoding="utf-8")
        if header.name == "KVX2800T.h":
            text = text.replace("/**\n * @name Sessions\n", addition + "/**\n * @name Sessions\n")
        (headers / header.name).write_text(text, encoding="utf-8")
    own = f"\nINPUT = {headers}\nOUTPUT_DIRECTORY = {folder}\nWARN_AS_ERROR = NO\n"
    doxyfile = pathlib.Path(os.environ["DOXYFILE"]).read_text(encoding="utf-8") + own
    subprocess.run([os.environ["DOXYGEN"], "-"], input=doxyfile, text=True, check=True, stderr=subprocess.DEVNULL)
    return folder

using System;
using System.Linq;
using System.Runtime.InteropServices;

namespace Kvx2800t
{
    /// <summary>
    /// A session's handle. A call keeps it from being closed until it returns, and who forgets to close it has that
    /// done when it is no longer used.
    /// </summary>
    /// <remarks>ViSession has 32 bits; as the first argument it is the lower half of what is passed here.</remarks>
    internal sealed class SessionHandle : SafeHandle
    {
        /// <summary>Stands for no session: functions that take that mean the calling thread.</summary>
        internal static readonly SessionHandle None = new SessionHandle(null, 0, false);

        private readonly Functions functions;

        internal SessionHandle(Functions functions, uint vi)
            : this(functions, vi, true)
        {
        }

        private SessionHandle(Functions functions, uint vi, bool isOwned)
            : base(IntPtr.Zero, isOwned)
        {
            this.functions = functions;
            SetHandle(IntPtr.Size == 8 ? new IntPtr((long)vi) : new IntPtr(unchecked((int)vi)));
        }

        public override bool IsInvalid => handle == IntPtr.Zero;

        protected override bool ReleaseHandle()
        {
            // This one counts as closed already and cannot be passed.
            var again = new SessionHandle(null, unchecked((uint)handle.ToInt64()), false);
            return functions.close(again) >= 0;
        }
    }

    /// <summary>What generated methods use, and the functions with arrays.</summary>
    internal sealed partial class Session : IDisposable
    {
        private delegate int TextFunction(int size, byte[] text);

        private readonly Library library;
        private readonly Functions functions;
        private readonly SessionHandle handle = SessionHandle.None;

        internal Session(Library library, string resource, bool idQuery, bool reset, string options)
        {
            this.library = library;
            functions = library.Functions;
            // The thread keeps its first error until it is read; an older one would stand in the way.
            functions.ClearError(handle);
            handle = new SessionHandle(functions, Open(Text.In(resource), Switch(idQuery), Switch(reset), options));
        }

        public void Dispose()
        {
            handle.Dispose();
        }

        private uint Open(byte[] resource, ushort idQuery, ushort reset, string options)
        {
            uint vi;
            if (options.Length == 0)
            {
                Check("init", functions.init(resource, idQuery, reset, out vi));
            }
            else
            {
                Check("InitWithOptions",
                      functions.InitWithOptions(resource, idQuery, reset, Text.In(options), out vi));
            }
            return vi;
        }

        internal (int, string) GetError()
        {
            return library.RecordedError(handle);
        }

        internal void LockSession()
        {
            ushort hasLock = 0;
            Check("LockSession", functions.LockSession(handle, ref hasLock));
        }

        internal void UnlockSession()
        {
            ushort hasLock = 1;
            Check("UnlockSession", functions.UnlockSession(handle, ref hasLock));
        }

        internal string error_message(int code)
        {
            var text = new byte[Text.Size];
            Check("error_message", functions.error_message(handle, code, text));
            return Text.Out(text);
        }

        internal (int, string) error_query()
        {
            var message = new byte[Text.Size];
            Check("error_query", functions.error_query(handle, out var code, message));
            return (code, Text.Out(message));
        }

        /// <summary>Null when there is no self test.</summary>
        internal (int, string)? self_test()
        {
            var message = new byte[Text.Size];
            var status = functions.self_test(handle, out var result, message);
            Check("self_test", status);
            if (status == StatusCode.WarnNsupSelfTest)
            {
                return null;
            }
            return ((int)result, Text.Out(message));
        }

        internal (string, string) revision_query()
        {
            var driver = new byte[Text.Size];
            var instrument = new byte[Text.Size];
            Check("revision_query", functions.revision_query(handle, driver, instrument));
            return (Text.Out(driver), Text.Out(instrument));
        }

        internal string GetChannelName(int index)
        {
            return TextOf("GetChannelName", (size, text) => functions.GetChannelName(handle, index, size, text));
        }

        internal string GetAttributeViString(string channel, AttributeId attribute)
        {
            var name = Text.In(channel);
            return TextOf("GetAttributeViString",
                          (size, text) => functions.GetAttributeViString(handle, name, attribute, size, text));
        }

        internal string GetNextMessageRecord()
        {
            return TextOf("GetNextMessageRecord",
                          (size, text) => functions.GetNextMessageRecord(handle, size, text), Text.RecordSize);
        }

        internal string GetNextCoercionRecord()
        {
            return TextOf("GetNextCoercionRecord",
                          (size, text) => functions.GetNextCoercionRecord(handle, size, text));
        }

        internal string GetNextInterchangeWarning()
        {
            return TextOf("GetNextInterchangeWarning",
                          (size, text) => functions.GetNextInterchangeWarning(handle, size, text));
        }

        internal Reading[] MeasureAll(string channels, int size)
        {
            var volts = new double[size];
            var amperes = new double[size];
            var watts = new double[size];
            Check("MeasureAll",
                  functions.MeasureAll(handle, Text.In(channels), size, volts, amperes, watts, out var count));
            return Enumerable.Range(0, count).Select(i => new Reading(volts[i], amperes[i], watts[i])).ToArray();
        }

        internal void LoadList(string channels, double[] volts, double[] amperes, double[] seconds)
        {
            Check("LoadList",
                  functions.LoadList(handle, Text.In(channels), volts.Length, volts, amperes, seconds));
        }

        internal void LoadDelay(string channels, bool[] states, double[] seconds)
        {
            var switches = states.Select(Switch).ToArray();
            Check("LoadDelay", functions.LoadDelay(handle, Text.In(channels), switches.Length, switches, seconds));
        }

        internal void viWrite(byte[] message)
        {
            Check("viWrite", functions.viWrite(handle, message, message.Length, out _));
        }

        /// <summary>A response of more bytes is an error.</summary>
        internal byte[] viRead(int largest)
        {
            var data = new byte[largest];
            var status = functions.viRead(handle, largest, data, out var count);
            Check("viRead", status);
            if (status == StatusCode.WarnArrayTruncated)
            {
                throw library.Failure(handle, "viRead", status);
            }
            Array.Resize(ref data, (int)count);
            return data;
        }

        /// <summary>A text of any length: a positive status is the size that is needed.</summary>
        private string TextOf(string name, TextFunction function, int usualSize = Text.Size)
        {
            var text = new byte[usualSize];
            int status;
            while ((status = function(text.Length, text)) > text.Length)
            {
                text = new byte[status];
            }
            Check(name, Math.Min(status, 0));
            return Text.Out(text);
        }

        private void Check(string function, int status)
        {
            library.Check(handle, function, status);
        }

        private static ushort Switch(bool value)
        {
            return (ushort)(value ? 1 : 0);
        }
    }
}

using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.IO;
using System.Runtime.InteropServices;

namespace Kvx2800t
{
    /// <summary>The driver's library, loaded. It stays so until the program ends.</summary>
    public sealed class Library
    {
        /// <summary>The environment variable that names the library.</summary>
        public const string Variable = "KVX2800T_LIBRARY";

        private const string Prefix = "KVX2800T_";

        /// <summary>Each call, at the level Verbose, and each warning.</summary>
        private static readonly TraceSource Calls = new TraceSource("Kvx2800t", SourceLevels.Warning);

        /// <summary>Loads the library that the environment variable names, or else the first of the usual places.</summary>
        public Library()
            : this(Environment.GetEnvironmentVariable(Variable))
        {
        }

        /// <summary>Loads the library at a path; without one, the first of the usual places.</summary>
        public Library(string path)
        {
            var failures = new List<KeyValuePair<string, string>>();
            foreach (var place in string.IsNullOrEmpty(path) ? Loader.OfThisHost.UsualPlaces() : new[] { path })
            {
                try
                {
                    Functions = Load(place);
                    Location = place;
                    return;
                }
                catch (IOException reason)
                {
                    failures.Add(new KeyValuePair<string, string>(place, reason.Message));
                }
            }
            throw new DriverNotInstalledException(failures);
        }

        /// <summary>Where it was found: a path, or a name that the system knows.</summary>
        public string Location { get; }

        /// <summary>Tells of calls (SourceLevels.Verbose) and warnings; give it listeners and a level.</summary>
        public static TraceSource Trace => Calls;

        internal Functions Functions { get; }

        /// <summary>The driver's message for a status, with "%s" for details; empty for one that is not its own.</summary>
        public string ErrorText(int code)
        {
            var text = new byte[Text.Size];
            return Functions.error_message(SessionHandle.None, code, text) < 0 ? "" : Text.Out(text);
        }

        /// <summary>Reads and clears what a session, or this thread for none, has recorded; 0 when that is nothing.</summary>
        internal (int Code, string Text) RecordedError(SessionHandle session)
        {
            var size = Functions.GetError(session, out _, 0, null);
            if (size <= 0)
            {
                return (0, "");
            }
            var text = new byte[size];
            Functions.GetError(session, out var code, size, text);
            return (code, Text.Out(text));
        }

        /// <summary>Throws the exception of an error. A warning, and each call, is traced.</summary>
        internal void Check(SessionHandle session, string function, int status)
        {
            var kind = status > 0 ? TraceEventType.Warning : TraceEventType.Verbose;
            if (Calls.Switch.ShouldTrace(kind))
            {
                Calls.TraceEvent(kind, 0, $"{Prefix}{function} = 0x{status:X8}");
            }
            if (status < 0)
            {
                throw Failure(session, function, status);
            }
        }

        /// <summary>The exception of a status, with what is recorded of it.</summary>
        internal DriverException Failure(SessionHandle session, string function, int status)
        {
            var (code, text) = RecordedError(session);
            return DriverException.Of(status, code == status ? text : ErrorText(status), Prefix + function);
        }

        private static Functions Load(string place)
        {
            if (!string.IsNullOrEmpty(Path.GetDirectoryName(place)) && !File.Exists(place))
            {
                throw new IOException("there is no such file");
            }
            var library = Loader.OfThisHost.Load(place);
            return new Functions((name, kind) => Find(library, name, kind));
        }

        private static Delegate Find(IntPtr library, string name, Type kind)
        {
            var function = Loader.OfThisHost.Find(library, name);
            return function != IntPtr.Zero
                ? Marshal.GetDelegateForFunctionPointer(function, kind)
                : throw new IOException($"it has no function {name}");
        }
    }
}

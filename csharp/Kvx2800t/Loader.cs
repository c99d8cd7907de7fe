using System;
using System.ComponentModel;
using System.IO;
using System.Reflection;
using System.Runtime.InteropServices;

namespace Kvx2800t
{
    /// <summary>What hosts do differently: where the driver's library is, and how it is loaded.</summary>
    internal abstract class Loader
    {
        internal static readonly Loader OfThisHost =
            Path.DirectorySeparatorChar == '\\' ? (Loader)new WindowsLoader() : new PosixLoader();

        /// <summary>The places to look at, in this order; a name without a folder is looked up by the system.</summary>
        internal abstract string[] UsualPlaces();

        /// <summary>Loads a library. Throws IOException with the reason when that fails.</summary>
        internal abstract IntPtr Load(string path);

        /// <summary>A function of it; zero when it has none of this name.</summary>
        internal abstract IntPtr Find(IntPtr library, string function);

        private sealed class PosixLoader : Loader
        {
            private const string Name = "libKVX2800T.so.1";
            private const int ResolveNow = 2;

            internal override string[] UsualPlaces()
            {
                var own = Path.GetDirectoryName(Assembly.GetExecutingAssembly().Location);
                return string.IsNullOrEmpty(own) ? new[] { Name } : new[] { Path.Combine(own, Name), Name };
            }

            internal override IntPtr Load(string path)
            {
                var library = dlopen(Text.In(path), ResolveNow);
                return library != IntPtr.Zero ? library : throw new IOException(Marshal.PtrToStringAnsi(dlerror()));
            }

            internal override IntPtr Find(IntPtr library, string function)
            {
                return dlsym(library, Text.In(function));
            }

            [DllImport("libdl.so.2")]
            private static extern IntPtr dlopen(byte[] path, int flags);

            [DllImport("libdl.so.2")]
            private static extern IntPtr dlsym(IntPtr library, byte[] function);

            [DllImport("libdl.so.2")]
            private static extern IntPtr dlerror();
        }

        private sealed class WindowsLoader : Loader
        {
            /// <summary>The library's own folder is where its libraries are looked for first.</summary>
            private const uint AlteredSearchPath = 8;

            internal override string[] UsualPlaces()
            {
                var is64 = IntPtr.Size == 8;
                var name = is64 ? "KVX2800T_64.dll" : "KVX2800T.dll";
                var root = Environment.GetEnvironmentVariable(is64 ? "IVIROOTDIR64" : "IVIROOTDIR32");
                return string.IsNullOrEmpty(root) ? new[] { name } : new[] { Path.Combine(root, "Bin", name), name };
            }

            internal override IntPtr Load(string path)
            {
                var library = LoadLibraryExW(path, IntPtr.Zero, Path.IsPathRooted(path) ? AlteredSearchPath : 0);
                return library != IntPtr.Zero ? library : throw new IOException(new Win32Exception().Message);
            }

            internal override IntPtr Find(IntPtr library, string function)
            {
                return GetProcAddress(library, Text.In(function));
            }

            [DllImport("kernel32", CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
            private static extern IntPtr LoadLibraryExW(string path, IntPtr reserved, uint flags);

            [DllImport("kernel32", ExactSpelling = true)]
            private static extern IntPtr GetProcAddress(IntPtr library, byte[] function);
        }
    }
}

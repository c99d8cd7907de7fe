using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.IO;
using System.Linq;
using System.Net.Sockets;
using System.Reflection;

namespace Kvx2800t.Tests
{
    /// <summary>A virtual instrument with its test control; it ends with this process at the latest.</summary>
    internal sealed class VirtualInstrument : IDisposable
    {
        private readonly Process process;
        private readonly StreamReader answers;
        private readonly StreamWriter commands;

        internal VirtualInstrument()
        {
            var start = new ProcessStartInfo(Environment.GetEnvironmentVariable("KVX_VIRTUAL_INSTRUMENT"),
                                             "--port 0 --control-port 0 --until-stdin-closes")
            {
                UseShellExecute = false,
                RedirectStandardInput = true,
                RedirectStandardOutput = true,
                RedirectStandardError = true,
            };
            process = Process.Start(start);
            Resource = $"TCPIP0::127.0.0.1::{AnnouncedPort("listening on ")}::SOCKET";
            var stream = new TcpClient("127.0.0.1", AnnouncedPort("test control on ")).GetStream();
            answers = new StreamReader(stream);
            commands = new StreamWriter(stream) { AutoFlush = true, NewLine = "\n" };
        }

        internal string Resource { get; }

        public void Dispose()
        {
            process.StandardInput.Close();
            process.WaitForExit();
        }

        internal string Control(string command)
        {
            commands.WriteLine(command);
            var answer = answers.ReadLine();
            Expect.True(answer.StartsWith("ok"), $"{command}: {answer}");
            return answer;
        }

        /// <summary>What it has received since the last NewLines.</summary>
        internal string[] Lines()
        {
            var count = int.Parse(Control("log").Split(' ')[1]);
            return Enumerable.Range(0, count).Select(_ => answers.ReadLine()).ToArray();
        }

        /// <summary>The same, which is forgotten then. No client may be sending.</summary>
        internal string[] NewLines()
        {
            var lines = Lines();
            Control("clear-log");
            return lines;
        }

        /// <summary>Waits until its only client is gone.</summary>
        internal void ExpectDisconnected()
        {
            string line;
            do
            {
                line = process.StandardError.ReadLine();
            } while (line != null && !line.EndsWith(" disconnected"));
            Expect.True(line != null, "the instrument ended with its client connected");
        }

        private int AnnouncedPort(string start)
        {
            var line = process.StandardOutput.ReadLine();
            Expect.True(line != null && line.StartsWith(start), $"\"{line}\" is not {start}");
            return int.Parse(line.Substring(line.LastIndexOf(':') + 1));
        }
    }

    internal static class Expect
    {
        internal static void True(bool condition, string what)
        {
            if (!condition)
            {
                throw new InvalidOperationException(what);
            }
        }

        internal static void Equal<T>(T expected, T actual, string what = "")
        {
            True(Equals(expected, actual), $"{what} expected: <{expected}>, but was: <{actual}>");
        }

        internal static void Lines(VirtualInstrument instrument, params string[] lines)
        {
            Equal(string.Join("\n", lines), string.Join("\n", instrument.NewLines()));
        }

        internal static T Throws<T>(Action action)
            where T : Exception
        {
            try
            {
                action();
            }
            catch (Exception exception) when (exception.GetType() == typeof(T))
            {
                return (T)exception;
            }
            throw new InvalidOperationException($"no {typeof(T).Name}");
        }

        internal static void Fails<T>(string function, uint code, string text, Action action)
            where T : DriverException
        {
            var exception = Throws<T>(action);
            Equal(unchecked((int)code), exception.Code);
            Equal(text, exception.Text);
            Equal("KVX2800T_" + function, exception.Function);
            Equal($"KVX2800T_{function}: 0x{code:X8} {text}", exception.Message);
        }
    }

    /// <summary>Runs the methods of a class that are public; each is a test.</summary>
    internal static class Program
    {
        private static int Main(string[] names)
        {
            var failed = 0;
            foreach (var test in names.SelectMany(Tests))
            {
                failed += Passes(test) ? 0 : 1;
            }
            return failed == 0 ? 0 : 1;
        }

        private static IEnumerable<MethodInfo> Tests(string name)
        {
            var tests = Type.GetType("Kvx2800t.Tests." + name, true)
                .GetMethods(BindingFlags.Public | BindingFlags.Static | BindingFlags.DeclaredOnly);
            Expect.True(tests.Length > 0, name + " has no tests");
            return tests;
        }

        private static bool Passes(MethodInfo test)
        {
            try
            {
                test.Invoke(null, null);
                return true;
            }
            catch (TargetInvocationException failure)
            {
                Console.WriteLine($"{test.DeclaringType.Name}.{test.Name}: {failure.InnerException}");
                return false;
            }
        }
    }
}

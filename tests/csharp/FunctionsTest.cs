using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.IO;
using System.Linq;
using System.Reflection;

namespace Kvx2800t.Tests
{
    /// <summary>Which functions of the driver the public members reach.</summary>
    internal static class FunctionsTest
    {
        /// <summary>Those whose calls are a part of every other's, and not traced.</summary>
        private static readonly string[] Untraced = { "close", "GetError" };

        public static void EveryExportedFunctionIsReached()
        {
            var exports = File.ReadAllText(Environment.GetEnvironmentVariable("KVX_EXPORTS"))
                .Split(new[] { '\n', '\r', ' ' }, StringSplitOptions.RemoveEmptyEntries);
            Expect.Equal(170, exports.Length);
            var expected = exports.Select(name => name.Substring("KVX2800T_".Length)).Except(Untraced);
            Expect.Equal("", string.Join(" ", expected.Except(CallEverything().Select(call => call.Function))));
        }

        public static void ASettingIsReadByTheCounterpartOfWhatSetsIt()
        {
            foreach (var property in CallEverything().Where(call => call.IsProperty).GroupBy(call => call.Member))
            {
                var stems = property.Select(call => Stem(call.Function)).Distinct().ToArray();
                Expect.True(stems.Length == 1, $"{property.Key}: {string.Join(", ", stems)}");
            }
        }

        private static string Stem(string function)
        {
            foreach (var verb in new[] { "Configure", "Query", "GetAttribute", "SetAttribute", "Get", "Set" })
            {
                if (function.StartsWith(verb))
                {
                    return function.Substring(verb.Length);
                }
            }
            return function;
        }

        private sealed class Call
        {
            internal string Member;
            internal bool IsProperty;
            internal string Function;
        }

        private sealed class Listener : TraceListener
        {
            internal readonly List<string> Functions = new List<string>();

            public override void Write(string message)
            {
            }

            public override void WriteLine(string message)
            {
            }

            public override void TraceEvent(TraceEventCache cache, string source, TraceEventType kind, int id, string message)
            {
                Functions.Add(message.Substring("KVX2800T_".Length).Split(' ')[0]);
            }
        }

        /// <summary>Reads and sets each public property, and calls each public method, of a simulated supply.</summary>
        private static List<Call> CallEverything()
        {
            var listener = new Listener();
            var calls = new List<Call>();
            Library.Trace.Listeners.Add(listener);
            Library.Trace.Switch.Level = SourceLevels.Verbose;
            try
            {
                Record(calls, listener, "Supply", false, () => new Supply("", new Options { Profile = false }).Dispose());
                Record(calls, listener, "Supply", false,
                       () => Use(new Supply("", new Options { Simulate = true }), calls, listener));
            }
            finally
            {
                Library.Trace.Switch.Level = SourceLevels.Off;
                Library.Trace.Listeners.Remove(listener);
            }
            return calls;
        }

        private static void Use(Supply supply, List<Call> calls, Listener listener)
        {
            Record(calls, listener, "Supply", false, () => { });
            var channel = supply.Channels["CH1"];
            Record(calls, listener, "Channels", false, () => supply.Channels.ToList());
            foreach (var target in new object[] { channel, channel.Protection, channel.State, channel.List,
                                                  channel.ListTemplate, channel.Delay, channel.DelayGenerator, supply })
            {
                UseMembers(target, calls, listener);
            }
        }

        private static void UseMembers(object target, List<Call> calls, Listener listener)
        {
            var members = BindingFlags.Public | BindingFlags.Instance | BindingFlags.DeclaredOnly;
            foreach (var property in target.GetType().GetProperties(members))
            {
                var name = $"{target.GetType().Name}.{property.Name}";
                Record(calls, listener, name, true, () => property.GetValue(target));
                if (property.CanWrite)
                {
                    Record(calls, listener, name, true, () => property.SetValue(target, ValueOf(property.PropertyType)));
                }
            }
            foreach (var method in target.GetType().GetMethods(members).Where(m => !m.IsSpecialName && m.Name != "Dispose"))
            {
                var arguments = method.GetParameters().Select(parameter => ValueOf(parameter.ParameterType)).ToArray();
                Record(calls, listener, method.Name, false,
                       () => (method.Invoke(target, arguments) as IDisposable)?.Dispose());
            }
        }

        private static object ValueOf(Type type)
        {
            var element = type.GetElementType();
            return type == typeof(string) ? "CH1"
                : type == typeof(int) ? 1
                : element != null ? Array.CreateInstance(element, 1)
                : Activator.CreateInstance(type);
        }

        private static void Record(List<Call> calls, Listener listener, string member, bool isProperty, Action action)
        {
            try
            {
                action();
            }
            catch (TargetInvocationException exception) when (exception.InnerException is DriverException)
            {
            }
            catch (DriverException)
            {
            }
            calls.AddRange(listener.Functions.Select(
                function => new Call { Member = member, IsProperty = isProperty, Function = function }));
            listener.Functions.Clear();
        }
    }
}

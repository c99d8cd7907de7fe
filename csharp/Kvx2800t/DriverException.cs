using System;
using System.Collections.Generic;
using System.Linq;

namespace Kvx2800t
{
    /// <summary>A call that has failed. There is a class for each status of the driver, which derives from this one.</summary>
    public partial class DriverException : Exception
    {
        internal DriverException(int code, string text, string function)
            : base($"{function}: 0x{code:X8} {text}")
        {
            Code = code;
            Text = text;
            Function = function;
        }

        /// <summary>The status, one of StatusCode, or one that the driver has passed on.</summary>
        public int Code { get; }

        /// <summary>The text that the driver has recorded.</summary>
        public string Text { get; }

        /// <summary>The function that has returned the status, such as KVX2800T_reset.</summary>
        public string Function { get; }
    }

    /// <summary>The driver's library could not be loaded.</summary>
    public sealed class DriverNotInstalledException : DllNotFoundException
    {
        internal DriverNotInstalledException(IReadOnlyList<KeyValuePair<string, string>> places)
            : base("the KVX2800T driver is not installed, or its library cannot be loaded. Looked at:" +
                   string.Concat(places.Select(tried => $"\n  {tried.Key}: {tried.Value}")) +
                   $"\nInstall the driver, or name its library by the environment variable {Library.Variable}.")
        {
            Places = places;
        }

        /// <summary>Each place that was tried, in this order, with the reason why it was not taken.</summary>
        public IReadOnlyList<KeyValuePair<string, string>> Places { get; }
    }
}

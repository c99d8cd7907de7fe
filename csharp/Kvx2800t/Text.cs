using System;
using System.Text;

namespace Kvx2800t
{
    /// <summary>Texts as the driver takes and gives them: UTF-8, with a NUL at their end.</summary>
    internal static class Text
    {
        /// <summary>How many bytes functions write that are not told a size.</summary>
        internal const int Size = 256;

        /// <summary>How many hold every record of a message.</summary>
        internal const int RecordSize = 1024;

        private static readonly Encoding Strict = new UTF8Encoding(false, true);

        internal static byte[] In(string text)
        {
            if (text == null)
            {
                throw new ArgumentNullException(nameof(text));
            }
            if (text.IndexOf('\0') >= 0)
            {
                throw new ArgumentException("a text for the driver cannot have a NUL in it");
            }
            return Strict.GetBytes(text + "\0");
        }

        internal static string Out(byte[] buffer)
        {
            var end = Array.IndexOf(buffer, (byte)0);
            return Encoding.UTF8.GetString(buffer, 0, end < 0 ? buffer.Length : end);
        }

        /// <summary>Without its NUL, for messages to the instrument.</summary>
        internal static byte[] Bytes(string text)
        {
            return Strict.GetBytes(text);
        }
    }
}

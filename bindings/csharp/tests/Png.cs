// Reads what octrender writes: 8 bits of red, green and blue, or with alpha, not interlaced.
using System;
using System.Collections.Generic;
using System.IO;
using System.IO.Compression;
using System.Text;

internal static class Png {
  // Blue, green, red, alpha; the top row first.
  public static byte[] Read(string file) {
    byte[] bytes = File.ReadAllBytes(file);
    int width = 0, height = 0, channels = 0;
    var packed = new List<byte>();
    for (int at = 8; at < bytes.Length;) {
      int length = Number(bytes, at);
      string kind = Encoding.ASCII.GetString(bytes, at + 4, 4);
      if (kind == "IHDR") {
        width = Number(bytes, at + 8);
        height = Number(bytes, at + 12);
        channels = bytes[at + 17] == 6 ? 4 : bytes[at + 17] == 2 ? 3 : 0;
      }
      if (kind == "IDAT") packed.AddRange(new ArraySegment<byte>(bytes, at + 8, length));
      at += length + 12;
    }
    if (channels == 0) throw new InvalidDataException(file);
    var rows = new MemoryStream();
    using (var inflater = new DeflateStream(new MemoryStream(packed.ToArray(), 2, packed.Count - 2),
                                            CompressionMode.Decompress)) {
      inflater.CopyTo(rows);
    }
    return Pixels(rows.ToArray(), width, height, channels);
  }

  private static byte[] Pixels(byte[] rows, int width, int height, int channels) {
    int stride = width * channels;
    var above = new byte[stride];
    var pixels = new byte[width * height * 4];
    for (int y = 0; y < height; ++y) {
      var row = new byte[stride];
      int filter = rows[y * (stride + 1)];
      for (int i = 0; i < stride; ++i) {
        int left = i >= channels ? row[i - channels] : 0;
        int corner = i >= channels ? above[i - channels] : 0;
        int guess = filter == 1 ? left : filter == 2 ? above[i] : filter == 3 ? (left + above[i]) / 2
            : filter == 4 ? Nearest(left, above[i], corner) : 0;
        row[i] = (byte)(rows[y * (stride + 1) + 1 + i] + guess);
      }
      for (int x = 0; x < width; ++x) {
        int to = (y * width + x) * 4, from = x * channels;
        pixels[to] = row[from + 2];
        pixels[to + 1] = row[from + 1];
        pixels[to + 2] = row[from];
        pixels[to + 3] = channels == 4 ? row[from + 3] : (byte)255;
      }
      above = row;
    }
    return pixels;
  }

  private static int Nearest(int left, int above, int corner) {
    int sum = left + above - corner;
    int toLeft = Math.Abs(sum - left), toAbove = Math.Abs(sum - above), toCorner = Math.Abs(sum - corner);
    return toLeft <= toAbove && toLeft <= toCorner ? left : toAbove <= toCorner ? above : corner;
  }

  private static int Number(byte[] bytes, int at) {
    return bytes[at] << 24 | bytes[at + 1] << 16 | bytes[at + 2] << 8 | bytes[at + 3];
  }
}

#include "overseer/report_output.h"

#include <algorithm>
#include <cstdio>

namespace overseer {

namespace {

std::string Label(const std::string& name) {
  std::string label = name;
  for (char& c : label) {
    if (c == '_') c = ' ';
  }
  return label;
}

std::string Padded(std::string text, size_t width) {
  if (text.size() < width) text.append(width - text.size(), ' ');
  return text;
}

std::string Heading(const DecodedReply& reply) {
  return reply.kind ? "kind " + std::to_string(reply.kind) : "msg " + std::to_string(reply.id);
}

}  // namespace

std::string Utf8(std::wstring_view text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    char32_t c = static_cast<char16_t>(text[i]);
    if (c >= 0xD800 && c < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
      c = 0x10000 + ((c - 0xD800) << 10) + (static_cast<char16_t>(text[++i]) - 0xDC00);
    } else if (c >= 0xD800 && c < 0xE000) {
      c = 0xFFFD;  // a lone surrogate
    }
    if (c < 0x80) {
      out += static_cast<char>(c);
    } else if (c < 0x800) {
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      out += static_cast<char>(0xE0 | (c >> 12));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (c >> 18));
      out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return out;
}

std::string JsonString(std::wstring_view text) {
  std::string out = "\"";
  for (char c : Utf8(text)) {
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          char escape[8];
          std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(static_cast<unsigned char>(c)));
          out += escape;
        } else {
          out += c;
        }
    }
  }
  return out + "\"";
}

std::string ReplyTable(const DecodedReply& reply) {
  std::string out = Padded(Heading(reply), 10) + reply.title;
  if (reply.progress) {
    // Progress fits on one line: step number and the step just finished.
    for (const Field& field : reply.fields) out += "  " + field.name + " " + Utf8(field.value);
    return out + "\n";
  }
  out += "\n";
  if (!reply.readable) {
    out += "          (not in the expected layout) text: " + Utf8(reply.text) + "\n";
  }
  for (size_t i = 0; i < reply.fields.size(); ++i) {
    const Field& field = reply.fields[i];
    out += "          " + Padded(Label(field.name), 26) + Utf8(field.value);
    // A category's count and its size share a line.
    if (i + 1 < reply.fields.size() && reply.fields[i + 1].name == field.name + "_size") {
      out += Padded("", 8 - std::min<size_t>(field.value.size(), 7)) + Utf8(reply.fields[++i].value);
    }
    out += "\n";
  }
  return out;
}

std::string JsonReport(const RunReport& report) {
  auto narrow = [](const std::string& text) { return JsonString(std::wstring(text.begin(), text.end())); };
  std::string out = "{\n";
  out += "  \"command\": " + narrow(report.command) + ",\n";
  out += "  \"worker\": {\"path\": " + JsonString(report.workerPath) +
         ", \"pid\": " + std::to_string(report.workerPid) + ", \"attached\": " + (report.attached ? "true" : "false") +
         "},\n";
  out += "  \"settings_file\": " + JsonString(report.settingsPath) + ",\n";
  out += "  \"settings_written\": {";
  for (size_t i = 0; i < report.settingsWritten.size(); ++i) {
    out += (i ? ", " : "") + JsonString(report.settingsWritten[i].first) + ": " +
           JsonString(report.settingsWritten[i].second);
  }
  out += "},\n";
  if (report.browserRows) out += "  \"browser_rows\": " + BrowserRowsJson(*report.browserRows) + ",\n";
  if (report.pluginRows) out += "  \"plugin_rows\": " + PluginRowsJson(*report.pluginRows) + ",\n";
  out += "  \"replies\": [";
  for (size_t i = 0; i < report.replies.size(); ++i) {
    const DecodedReply& reply = report.replies[i];
    out += i ? ",\n    {" : "\n    {";
    out += "\"message\": " + std::to_string(reply.id);
    if (reply.kind) out += ", \"kind\": " + std::to_string(reply.kind);
    out += ", \"title\": " + narrow(reply.title);
    if (reply.progress) out += ", \"progress\": true";
    out += std::string(", \"readable\": ") + (reply.readable ? "true" : "false");
    if (reply.kind) out += ", \"text\": " + JsonString(reply.text);
    out += ", \"fields\": {";
    for (size_t f = 0; f < reply.fields.size(); ++f) {
      const Field& field = reply.fields[f];
      out += (f ? ", " : "") + narrow(field.name) + ": " + (field.number ? Utf8(field.value) : JsonString(field.value));
    }
    out += "}}";
  }
  out += report.replies.empty() ? "],\n" : "\n  ],\n";
  out += "  \"status\": " + narrow(report.status);
  if (!report.error.empty()) out += ",\n  \"error\": " + narrow(report.error);
  return out + "\n}\n";
}

}  // namespace overseer

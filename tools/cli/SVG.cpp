// SPDX-License-Identifier: Apache-2.0
#include "SVG.h"

#include "Text.h"

#include <array>
#include <cmath>

namespace orvane::cli {
namespace {

constexpr Paint ink{"ink", "#1f2328", "#e6edf3"};
constexpr std::array<Paint, 4> everyPaint{{{"paper", "#ffffff", "#0d1117"},
                                           {"muted", "#59636e", "#9198a1"},
                                           {"line", "#d1d9e0", "#3d444d"},
                                           {"accent", "#0969da", "#4493f8"}}};

// Plain rules without variables: not every viewer knows these.
std::string rules(std::span<const Paint> paints, std::string_view Paint::*colour) {
  std::string text = "svg{color:" + std::string(ink.*colour) + "}";
  const auto add = [&](const Paint& paint) {
    text.append(".").append(paint.name).append("{color:").append(paint.*colour).append("}");
  };
  for (const Paint& paint : everyPaint) add(paint);
  for (const Paint& paint : paints) add(paint);
  return text;
}

std::string_view entityOf(char character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&apos;";
    default:
      return {};
  }
}

}  // namespace

SVG::SVG(Size size, std::string_view title, std::string_view description,
         std::span<const Paint> paints) {
  body_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  open("svg", {{"xmlns", "http://www.w3.org/2000/svg"},
               {"width", size.width},
               {"height", size.height},
               {"viewBox", "0 0 " + number(size.width) + " " + number(size.height)},
               {"role", "img"},
               {"aria-labelledby", "title description"},
               {"font-family", "system-ui, -apple-system, 'Segoe UI', Roboto, sans-serif"},
               {"font-size", 13},
               {"fill", "currentColor"}});
  body_ += ">\n<title id=\"title\">" + escaped(title) + "</title>\n";
  body_ += "<desc id=\"description\">" + escaped(description) + "</desc>\n";
  body_ += "<style>\nsvg{color-scheme:light dark}\n" + rules(paints, &Paint::light);
  body_ += "\n@media (prefers-color-scheme:dark){" + rules(paints, &Paint::dark) + "}\n</style>\n";
  element("rect", {{"class", "paper"}, {"width", size.width}, {"height", size.height}});
}

void SVG::element(std::string_view name, const Attributes& attributes, std::string_view title) {
  open(name, attributes);
  if (title.empty()) {
    body_ += "/>\n";
    return;
  }
  body_ += "><title>" + escaped(title) + "</title></";
  body_.append(name).append(">\n");
}

void SVG::text(double x, double y, std::string_view text, const Attributes& attributes) {
  Attributes all{{"x", x}, {"y", y}};
  all.insert(all.end(), attributes.begin(), attributes.end());
  open("text", all);
  body_ += ">" + escaped(text) + "</text>\n";
}

std::string SVG::take() && { return std::move(body_.append("</svg>\n")); }

void SVG::open(std::string_view name, const Attributes& attributes) {
  body_.append("<").append(name);
  for (const Attribute& attribute : attributes) {
    body_.append(" ").append(attribute.name).append("=\"");
    body_.append(escaped(attribute.value)).append("\"");
  }
}

std::string SVG::number(double value) { return decimal(std::isfinite(value) ? value : 0.0, 2); }

std::string SVG::escaped(std::string_view text) {
  // U+FFFE and U+FFFF: the two beside control characters that XML 1.0 refuses (section 2.2).
  constexpr std::string_view beforeLast = "\xEF\xBF";
  const std::string shown = visible(text);
  std::string kept;
  kept.reserve(shown.size());
  for (const char character : shown) {
    const std::string_view entity = entityOf(character);
    if (!entity.empty()) {
      kept += entity;
    } else if (character >= '\xBE' && character <= '\xBF' && kept.ends_with(beforeLast)) {
      kept += '\xBD';
    } else {
      kept += character;
    }
  }
  return kept;
}

SVGPath& SVGPath::close() {
  text_ += 'Z';
  return *this;
}

SVGPath& SVGPath::add(char command, double x, double y) {
  text_ += command + SVG::number(x) + "," + SVG::number(y);
  return *this;
}

}  // namespace orvane::cli

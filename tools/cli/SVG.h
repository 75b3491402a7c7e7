// SPDX-License-Identifier: Apache-2.0
// Drawings as SVG documents that a browser shows well by day and by night.
#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::cli {

/// The colour of what has the class `name`, on light paper and on dark. It is the element's
/// `currentColor`: texts and areas are filled with it, lines ask for it ("stroke").
struct Paint {
  std::string_view name;
  std::string_view light;
  std::string_view dark;
};

/// An SVG document (W3C, SVG 2) that is written from its beginning to its end. Every drawing has
/// the paints "paper", which its background has, "muted" for texts of less weight, "line" for axes
/// and grids, and "accent" for what the drawing is about; everything else has the ink's colour.
class SVG {
 public:
  /// A name and a value; a number is written as `number` does.
  struct Attribute {
    Attribute(std::string_view key, std::string_view text)  // NOLINT(google-explicit-constructor)
        : name(key), value(text) {}
    Attribute(std::string_view key, double number)  // NOLINT(google-explicit-constructor)
        : name(key), value(SVG::number(number)) {}
    std::string_view name;
    std::string value;
  };
  using Attributes = std::vector<Attribute>;

  /// In pixels of CSS.
  struct Size {
    double width;
    double height;
  };

  /// Title and description are what people hear who don't see the drawing.
  SVG(Size size, std::string_view title, std::string_view description,
      std::span<const Paint> paints = {});

  /// An element; `title` is what a browser shows while the pointer rests on it.
  void element(std::string_view name, const Attributes& attributes, std::string_view title = {});

  /// A text whose baseline begins at the place ("text-anchor" changes that).
  void text(double x, double y, std::string_view text, const Attributes& attributes = {});

  /// What `draw` draws, in a group.
  template <class Draw>
  void group(const Attributes& attributes, Draw&& draw) {
    open("g", attributes);
    body_ += ">\n";
    std::forward<Draw>(draw)();
    body_ += "</g>\n";
  }

  [[nodiscard]] std::string take() &&;

  /// A hundredth of a pixel is the smallest step; what is not finite is written as 0.
  [[nodiscard]] static std::string number(double value);

  /// A text within an element or an attribute: XML's own characters as entities, control characters
  /// as everywhere on the screen, and what XML 1.0 can't hold as a replacement character.
  [[nodiscard]] static std::string escaped(std::string_view text);

 private:
  void open(std::string_view name, const Attributes& attributes);

  std::string body_;
};

/// A line for the attribute "d" of a path.
class SVGPath {
 public:
  SVGPath& moveTo(double x, double y) { return add('M', x, y); }
  SVGPath& lineTo(double x, double y) { return add('L', x, y); }
  SVGPath& close();

  [[nodiscard]] const std::string& text() const noexcept { return text_; }

 private:
  SVGPath& add(char command, double x, double y);

  std::string text_;
};

}  // namespace orvane::cli

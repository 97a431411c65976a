// The colours of a text box as a text.
#pragma once

#include <QTextBlock>
#include <QTextEdit>
#include <QTextLayout>
#include <string>

// 'b' for each character in the tokens' colour, '.' for each in the text's own.
inline std::string colorsOf(const QTextEdit& box) {
    std::string shape(static_cast<std::size_t>(box.document()->characterCount() - 1), '.');
    for (QTextBlock block = box.document()->begin(); block.isValid(); block = block.next())
        for (const QTextLayout::FormatRange& range : block.layout()->formats())
            if (range.format.hasProperty(QTextFormat::ForegroundBrush))
                for (int i = 0; i < range.length; ++i)
                    shape.at(static_cast<std::size_t>(block.position() + range.start + i)) = 'b';
    return shape;
}

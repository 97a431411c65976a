// Questions of the lower layers, asked with real boxes.
#pragma once

#include "platform/prompts.h"

namespace ui {

class MessageBoxes : public platform::Prompts {
  public:
    platform::BoxAnswer messageBox(const platform::MessageBox& box) override;
    std::optional<std::string> inputBox(const std::string& text, const std::string& title,
                                        const std::string& initial) override;
    std::optional<std::string> openFile(const platform::FileQuestion& question) override;
};

}  // namespace ui

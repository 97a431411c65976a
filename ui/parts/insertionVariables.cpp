#include "ui/parts/insertionVariables.h"

#include <QMenu>
#include <utility>

#include "core/procedure.h"
#include "database/settings.h"
#include "platform/prompts.h"
#include "ui/base/text.h"
#include "ui/parts/RTBHelpers.h"
#include "ui/widgets/variableTextBox.h"

namespace ui {

namespace {

// A handler's name in the log: the box and what happened to it.
std::string handlerName(const VariableTextBox& box, const char* event) {
    return toUtf8(box.objectName()) + event;
}

}  // namespace

InsertionVariables::InsertionVariables(std::string module, QWidget& window, VariableTextBox& rtbEmailSubject,
                                       VariableTextBox& rtbEmailBody, std::function<void()> changed)
    : QObject(&window),
      mnuVariables(new QMenu(&window)),
      module_(std::move(module)),
      rtbEmailSubject_(rtbEmailSubject),
      changed_(std::move(changed)),
      activeRichText_(&rtbEmailSubject) {
    mnuVariables->setObjectName("mnuVariables");
    mnuInsert.push_back(mnuVariables->addAction(QString()));
    mnuInsert.front()->setObjectName("mnuInsert_0");
    connect(mnuVariables, &QMenu::triggered, this, [this](QAction* entry) { mnuInsert_Click(*entry); });
    connectBox(rtbEmailSubject);
    connectBox(rtbEmailBody);
    new LeaveGuard(
        rtbEmailSubject, [this] { return rtbEmailSubject_Validate(); }, this);
}

void InsertionVariables::controlInit() {
    mnuVariables->setTitle(text(1058));
    if (mnuInsert.size() == 1)
        RTBHelpers::buildInsertionMenu(mnuInsert, *mnuVariables);
    else
        RTBHelpers::captionInsertionMenu(mnuInsert);
}

bool InsertionVariables::leaveSubject(QWidget& next) {
    const auto isBlank = [this] { return rtbEmailSubject_.toPlainText().isEmpty(); };
    if (isBlank()) {
        rtbEmailSubject_.setFocus();
        next.setFocus();
    }
    return !isBlank();
}

void InsertionVariables::connectBox(VariableTextBox& box) {
    connect(&box, &VariableTextBox::entered, this, [this, &box] { activeRichText_ = &box; });
    connect(&box, &VariableTextBox::charPressed, this,
            [this, &box](int charIndex) { richText_MouseDown(box, charIndex); });
    connect(&box, &VariableTextBox::menuRequested, this,
            [this, &box](int charIndex, const QPoint& place) { openMenu(box, charIndex, place); });
    connect(&box, &QTextEdit::textChanged, this, [this, &box] { richText_Change(box); });
}

void InsertionVariables::richText_MouseDown(VariableTextBox& box, int charIndex) {
    core::procedure(module_, handlerName(box, "_MouseDown"), [&](core::Frame&) {
        activeRichText_ = &box;
        activeCharIndex_ = charIndex;
    });
}

void InsertionVariables::openMenu(VariableTextBox& box, int charIndex, const QPoint& place) {
    richText_MouseDown(box, charIndex);
    box.placeCaret(charIndex);
    mnuVariables->popup(place);
}

void InsertionVariables::richText_Change(VariableTextBox& box) {
    core::procedure(module_, handlerName(box, "_Change"), [&](core::Frame& frame) {
        if (changed_)
            frame.step([&] { changed_(); });
        RTBHelpers::colorInsertionTokens(box, RTBHelpers::insertionTokens);
    });
}

void InsertionVariables::mnuInsert_Click(const QAction& entry) {
    core::procedure(module_, "mnuInsert_Click", [&](core::Frame&) {
        activeRichText_->insertAt(activeCharIndex_, entry.data().toString());
    });
}

LeaveGuard::Answer InsertionVariables::rtbEmailSubject_Validate() {
    using namespace platform;
    using Answer = LeaveGuard::Answer;
    return core::procedure(module_, "rtbEmailSubject_Validate", Answer::leave,
                           [&](core::Frame& frame, Answer& result) {
        if (!rtbEmailSubject_.toPlainText().isEmpty())
            return;
        const std::string question = toUtf8(text(1259) + "\n" + text(1260) + "\n" + text(1261));
        const BoxAnswer answer =
            prompts().messageBox({question, toUtf8(text(1262)), BoxIcon::question, BoxButtons::yesNo});
        result = Answer::stay;
        if (answer != BoxAnswer::yes)
            return;
        frame.step([&] {
            rtbEmailSubject_.setStoredText(mdlDatabase::getDefaultContent(mdlDatabase::emailContent).subject);
            result = Answer::leaveAfterQuestion;
        });
    });
}

}  // namespace ui

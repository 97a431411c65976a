#include "ui/parts/addressList.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "core/procedure.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/widgets/entryList.h"

namespace ui {

namespace {
constexpr int signWidth = 52;  // of a button that shows one sign
}  // namespace

AddressList::AddressList(Names names, QWidget* parent) : QWidget(parent), names_(std::move(names)) {
    lblNew = makeControl<QLabel>(this, names_.newLabel);
    txtNew = makeControl<QLineEdit>(this, names_.box);
    cmdAdd = makeControl<QPushButton>(this, names_.add);
    lblList = makeControl<QLabel>(this, names_.listLabel);
    list = makeControl<EntryList>(this, names_.list);
    cmdDelete = makeControl<QPushButton>(this, names_.remove);
    for (QPushButton* button : {cmdAdd, cmdDelete}) {
        button->setEnabled(false);
        button->setAutoDefault(false);
        button->setMaximumWidth(signWidth);
    }
    buildLayout();
    txtNew->installEventFilter(this);
    connect(txtNew, &QLineEdit::textEdited, this, [this] { typed_ = true; });
    connect(txtNew, &QLineEdit::textChanged, this, &AddressList::txtNew_Change);
    connect(cmdAdd, &QPushButton::clicked, this, &AddressList::cmdAdd_Click);
    connect(list, &EntryList::entryClicked, this, &AddressList::list_Click);
    connect(cmdDelete, &QPushButton::clicked, this, &AddressList::cmdDelete_Click);
}

// Enter adds what was typed. A dialog's default button would close the dialog and drop it.
bool AddressList::eventFilter(QObject* watched, QEvent* event) {
    if (watched != txtNew || event->type() != QEvent::KeyPress || txtNew->text().isEmpty())
        return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key != Qt::Key_Return && key != Qt::Key_Enter)
        return QWidget::eventFilter(watched, event);
    if (cmdAdd->isEnabled())
        cmdAdd_Click();
    return true;
}

void AddressList::buildLayout() {
    auto* page = new QGridLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setColumnStretch(0, 1);
    page->setColumnStretch(2, 1);
    page->addWidget(lblNew, 0, 0);
    page->addWidget(txtNew, 1, 0);
    page->addWidget(cmdAdd, 1, 1);
    page->addWidget(lblList, 0, 2);
    page->addWidget(list, 1, 2, 2, 1);
    page->addWidget(cmdDelete, 1, 3);
    page->setRowStretch(2, 1);
    lblNew->setBuddy(txtNew);
    lblList->setBuddy(list);
}

void AddressList::controlInit(const Texts& texts) {
    lblNew->setText(text(texts.newLabel));
    lblList->setText(text(texts.listLabel));
    captionSign(*cmdAdd, ">>", text(texts.addTip), lblList->text());
    captionSign(*cmdDelete, "X", text(texts.removeTip), lblList->text());
}

void AddressList::clear() {
    list->clear();
    selectedIndex_ = -1;
    typed_ = false;
}

void AddressList::addTyped() {
    if (typed_ && cmdAdd->isEnabled())
        cmdAdd_Click();
}

void AddressList::add(const mdlDatabase::AddressEntry& entry) {
    list->addEntry(entry.nodeKey, entry.address);
}

std::vector<mdlDatabase::AddressEntry> AddressList::entries() const {
    std::vector<mdlDatabase::AddressEntry> all;
    all.reserve(static_cast<std::size_t>(list->count()));
    for (int i = 0; i < list->count(); ++i)
        all.push_back({list->entryKey(i), list->entryText(i)});
    return all;
}

void AddressList::txtNew_Change() {
    core::procedure(names_.module, names_.box + "_Change", [&](core::Frame&) {
        cmdAdd->setEnabled(names_.mayBeAdded(toUtf8(txtNew->text())));
        emit changed();
    });
}

void AddressList::cmdAdd_Click() {
    core::procedure(names_.module, names_.add + "_Click", [&](core::Frame& frame) {
        const std::string address = toUtf8(txtNew->text());
        frame.step([&] {
            if (selectedIndex_ == -1)
                list->addEntry({}, address);
            else
                list->setEntryText(selectedIndex_, address);
        });
        txtNew->clear();
        selectedIndex_ = -1;
        typed_ = false;
        emit changed();
    });
}

void AddressList::list_Click(int index) {
    core::procedure(names_.module, names_.listClick, [&](core::Frame& frame) {
        frame.step([&] { txtNew->setText(fromUtf8(list->entryText(index))); });
        selectedIndex_ = index;
        typed_ = false;
        cmdDelete->setEnabled(true);
        emit picked();
    });
}

void AddressList::cmdDelete_Click() {
    core::procedure(names_.module, names_.remove + "_Click", [&](core::Frame& frame) {
        frame.step([&] { list->removeEntry(list->chosenEntry()); });
        selectedIndex_ = -1;
        typed_ = false;
        cmdDelete->setEnabled(false);
        emit changed();
    });
}

bool isPagerNumber(const std::string& text) {
    return !text.empty();
}

bool isSmtpAddress(const std::string& text) {
    const std::size_t at = text.find('@');
    return at != std::string::npos && at > 0 && at + 1 < text.size();
}

}  // namespace ui

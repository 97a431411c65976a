#include "ui/parts/directoryEntry.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "core/procedure.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"

namespace ui {

DirectoryEntry::DirectoryEntry(Names names, SearchDirectory search, QWidget* parent)
    : QWidget(parent), names_(std::move(names)), search_(std::move(search)) {
    const std::string& kind = names_.kind;
    lblType = makeControl<QLabel>(this, names_.typeLabel);
    auto* frame = makeControl<QWidget>(this, names_.frame);
    for (const int i : {0, 1})
        optionType.push_back(makeControl<QRadioButton>(frame, "option" + kind + "Type_" + std::to_string(i)));
    txtName = makeControl<QLineEdit>(this, "txt" + kind);
    txtDirectoryId = makeControl<QLineEdit>(this, "txt" + kind + "DirectoryId");
    cmdSelect = makeControl<QPushButton>(this, "cmdSelect" + kind);
    cmdClear = makeControl<QPushButton>(this, "cmdClear" + kind);
    txtName->setReadOnly(true);
    txtDirectoryId->hide();
    for (QPushButton* button : {cmdSelect, cmdClear}) {
        button->setEnabled(false);
        button->setAutoDefault(false);
    }
    buildLayout(frame);
    for (const int i : {0, 1})
        connect(optionType[static_cast<std::size_t>(i)], &QRadioButton::toggled, this, [this, i](bool on) {
            if (on)
                optionType_Click(i);
        });
    connect(cmdSelect, &QPushButton::clicked, this, &DirectoryEntry::cmdSelect_Click);
    connect(cmdClear, &QPushButton::clicked, this, &DirectoryEntry::cmdClear_Click);
}

void DirectoryEntry::buildLayout(QWidget* frame) {
    auto* options = new QHBoxLayout(frame);
    options->setContentsMargins(0, 0, 0, 0);
    options->addWidget(optionType[0]);
    options->addSpacing(12);
    options->addWidget(optionType[1]);
    options->addStretch();
    auto* page = new QGridLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setColumnStretch(1, 1);
    page->addWidget(lblType, 0, 0);
    page->addWidget(frame, 0, 1, 1, 3);
    page->addWidget(txtName, 1, 0, 1, 2);
    page->addWidget(cmdSelect, 1, 2);
    page->addWidget(cmdClear, 1, 3);
    page->setRowStretch(2, 1);
}

void DirectoryEntry::controlInit(const QString& device) {
    lblType->setText(text(1052));
    optionType[0]->setText(text(1073));
    optionType[1]->setText(text(1074));
    cmdSelect->setText(text(1075));
    cmdClear->setText(text(1069));
    txtName->setAccessibleName(device);
}

void DirectoryEntry::blank() {
    txtName->clear();
    txtDirectoryId->clear();
}

void DirectoryEntry::showEntry(int type, const std::string& displayName, const std::string& directoryId) {
    optionType[static_cast<std::size_t>(type)]->setChecked(true);
    txtName->setText(fromUtf8(displayName));
    txtDirectoryId->setText(fromUtf8(directoryId));
    cmdClear->setEnabled(true);
}

std::string DirectoryEntry::displayName() const {
    return toUtf8(txtName->text());
}

std::string DirectoryEntry::directoryId() const {
    return toUtf8(txtDirectoryId->text());
}

void DirectoryEntry::cmdSelect_Click() {
    core::procedure(names_.module, "cmdSelect" + names_.kind + "_Click", [&](core::Frame& frame) {
        std::optional<FoundEntry> found;
        // Required: without an option, as after Clear, it is the lists that are searched.
        frame.step([&] { found = search_(*this, names_.subscriberTypes, optionType[0]->isChecked()); });
        if (found) {
            txtName->setText(fromUtf8(found->displayName));
            txtDirectoryId->setText(fromUtf8(found->directoryId));
            cmdClear->setEnabled(true);
        }
        // Required: a cancelled search counts as a change too.
        emit changed();
    });
}

void DirectoryEntry::cmdClear_Click() {
    core::procedure(names_.module, "cmdClear" + names_.kind + "_Click", [&](core::Frame&) {
        blank();
        for (QRadioButton* option : optionType) {
            // An exclusive button cannot be switched off by itself.
            option->setAutoExclusive(false);
            option->setChecked(false);
            option->setAutoExclusive(true);
        }
        cmdClear->setEnabled(false);
        emit changed();
    });
}

void DirectoryEntry::optionType_Click(int index) {
    core::procedure(names_.module, "option" + names_.kind + "Type_Click", [&](core::Frame&) {
        cmdSelect->setEnabled(true);
        if (index == lastType_) {
            emit picked();
            return;
        }
        blank();
        lastType_ = index;
        cmdClear->setEnabled(false);
        emit changed();
    });
}

}  // namespace ui

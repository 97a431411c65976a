#include "ui/paneEventDetails.h"

#include <QFontDatabase>
#include <QFormLayout>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

#include "core/procedure.h"
#include "database/events.h"
#include "ui/controls.h"
#include "ui/text.h"

namespace {

constexpr char module[] = "frmMain";

QString fieldText(const platform::Recordset& row, std::string_view field) {
    return row.isNull(field) ? QString() : ui::fromUtf8(row.text(field));
}

}  // namespace

paneEventDetails::paneEventDetails(QWidget* parent) : QWidget(parent) {
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(6, 4, 6, 6);
    lblEventHeading = ui::makeControl<QLabel>(this, "lblEventHeading");
    lblEventHeading->setTextFormat(Qt::PlainText);
    QFont bold = lblEventHeading->font();
    bold.setBold(true);
    lblEventHeading->setFont(bold);
    outer->addWidget(lblEventHeading);

    auto* area = ui::makeControl<QScrollArea>(this, "VSViewPort1");
    auto* inner = new QWidget(area);
    lines = new QFormLayout(inner);
    lines->setLabelAlignment(Qt::AlignRight | Qt::AlignTop);
    lines->setVerticalSpacing(10);
    lblActiveValue = addLine("lblActive", "lblActiveValue");
    lblEventTypeValue = addLine("lblEventType", "lblEventTypeValue");
    lblEventNotesValue = addLine("lblEventNotes", "lblEventNotesValue");
    lblVoiceMailFilenameValue = addLine("lblVoiceMailFilename", "lblVoiceMailFilenameValue");
    lblEmailSubjectValue = addLine("lblEmailSubject", "lblEmailSubjectValue");
    lblEmailBodyValue = addLine("lblEmailBody", "lblEmailBodyValue");
    lblEmailBodyValue->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    area->setWidget(inner);
    area->setWidgetResizable(true);
    outer->addWidget(area, 1);
}

QLabel* paneEventDetails::addLine(const char* captionName, const char* valueName) {
    auto* caption = ui::makeControl<QLabel>(this, captionName);
    auto* value = ui::makeControl<QLabel>(this, valueName);
    value->setTextFormat(Qt::PlainText);
    value->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    value->setWordWrap(true);
    lines->addRow(caption, value);
    return value;
}

void paneEventDetails::controlInit() {
    const auto caption = [this](const char* name, long id) {
        findChild<QLabel*>(name)->setText(ui::text(id));
    };
    caption("lblActive", 1022);
    caption("lblEventType", 1052);
    caption("lblEventNotes", 1151);
    caption("lblVoiceMailFilename", 1038);
    caption("lblEmailSubject", 1039);
    caption("lblEmailBody", 1040);
    if (eventKey_ != 0)
        fillEvent(eventKey_);
}

void paneEventDetails::displayEventDetails(long eventKey, const std::string& nodeText) {
    core::procedure(module, "displayEventDetails", [&](core::Frame& frame) {
        eventKey_ = eventKey;
        lblEventHeading->setText(ui::fromUtf8(nodeText));
        frame.steps({[&] { fillEvent(eventKey); }, [&] { fillContent(eventKey); }});
    });
}

void paneEventDetails::fillEvent(long eventKey) {
    platform::Recordset event = mdlDatabase::getEvent(eventKey);
    if (event.EOF_())
        return;
    static constexpr long typeTexts[] = {1027, 1028, 1029};
    lblActiveValue->setText(ui::text(event.boolean("EventActive") ? 1182 : 1183).section(": ", 1));
    lblEventTypeValue->setText(
        ui::text(typeTexts[mdlDatabase::mapEventType(event.number("EventType"), true)]));
    lblEventNotesValue->setText(fieldText(event, "EventTitle"));
}

void paneEventDetails::fillContent(long eventKey) {
    platform::Recordset contents = mdlDatabase::getContentsForEvent(eventKey);
    for (QLabel* value : {lblVoiceMailFilenameValue, lblEmailSubjectValue, lblEmailBodyValue})
        value->clear();
    for (; !contents.EOF_(); contents.moveNext()) {
        if (contents.number("ContentType") == 1) {
            lblVoiceMailFilenameValue->setText(fieldText(contents, "ContentAttachment"));
        } else {
            lblEmailSubjectValue->setText(fieldText(contents, "ContentSubject"));
            lblEmailBodyValue->setText(fieldText(contents, "ContentNote"));
        }
    }
}

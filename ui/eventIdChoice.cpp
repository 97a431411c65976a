#include "ui/eventIdChoice.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QRadioButton>

#include "ui/controls.h"
#include "ui/text.h"
#include "ui/widgets/numberBox.h"

namespace ui {

EventIdControls makeEventIdControls(QGroupBox& frame) {
    EventIdControls controls;
    for (const int i : {allEventIds, specificEventId})
        controls.optionEventId.push_back(
            makeControl<QRadioButton>(&frame, "optionEventId_" + std::to_string(i)));
    auto* box = new NumberBox(-eventIdLimit, eventIdLimit, &frame);
    box->setObjectName("tdbnlSpecificEventId");
    box->setMaximumWidth(150);
    QSizePolicy keep = box->sizePolicy();
    keep.setRetainSizeWhenHidden(true);
    box->setSizePolicy(keep);
    controls.tdbnlSpecificEventId = box;

    auto* rows = new QGridLayout(&frame);
    rows->setColumnStretch(2, 1);
    rows->addWidget(controls.optionEventId[allEventIds], 0, 0);
    rows->addWidget(controls.optionEventId[specificEventId], 1, 0);
    rows->addWidget(box, 1, 1);
    return controls;
}

void captionEventIdControls(QGroupBox& frame, const EventIdControls& controls) {
    frame.setTitle(text(1143));
    controls.optionEventId[allEventIds]->setText(text(1307));
    controls.optionEventId[specificEventId]->setText(text(1308));
    controls.tdbnlSpecificEventId->setAccessibleName(plainCaption(text(1308)));
}

}  // namespace ui

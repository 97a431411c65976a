#include "ui/parts/eventIdChoice.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QRadioButton>

#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/widgets/numberBox.h"

namespace ui {

EventIdControls makeEventIdControls(QGroupBox& frame, long long lowest, long long highest) {
    EventIdControls controls;
    for (const int i : {allEventIds, specificEventId})
        controls.optionEventId.push_back(
            makeControl<QRadioButton>(&frame, "optionEventId_" + std::to_string(i)));
    auto* box = new NumberBox(lowest, highest, &frame);
    box->setObjectName("tdbnlSpecificEventId");
    box->setMaximumWidth(150);
    QSizePolicy keep = box->sizePolicy();
    keep.setRetainSizeWhenHidden(true);
    box->setSizePolicy(keep);
    controls.tdbnlSpecificEventId = box;
    return controls;
}

void layOutEventIdControls(QGroupBox& frame, const EventIdControls& controls) {
    auto* rows = new QGridLayout(&frame);
    rows->setColumnStretch(2, 1);
    rows->addWidget(controls.optionEventId[allEventIds], 0, 0);
    rows->addWidget(controls.optionEventId[specificEventId], 1, 0);
    rows->addWidget(controls.tdbnlSpecificEventId, 1, 1);
}

void captionEventIdControls(QGroupBox& frame, const EventIdControls& controls,
                            const EventIdCaptions& captions) {
    frame.setTitle(text(captions.frame));
    controls.optionEventId[allEventIds]->setText(text(captions.all));
    controls.optionEventId[specificEventId]->setText(text(captions.specific));
    controls.tdbnlSpecificEventId->setAccessibleName(plainCaption(text(captions.specific)));
}

bool isEventIdMissing(const EventIdControls& controls) {
    return controls.optionEventId[specificEventId]->isChecked() &&
           !controls.tdbnlSpecificEventId->hasNumber();
}

}  // namespace ui

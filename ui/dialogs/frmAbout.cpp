#include "ui/dialogs/frmAbout.h"

#include <QActionGroup>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QMenu>
#include <QPushButton>

#include "core/boxOnFailure.h"
#include "core/mdlVerInfo.h"
#include "core/modLocalize.h"
#include "core/procedure.h"
#include "core/state.h"
#include "database/addressDetails.h"
#include "ui/base/controls.h"
#include "ui/base/formFonts.h"
#include "ui/base/loadedWindows.h"
#include "ui/base/text.h"

namespace {

constexpr char module[] = "frmAbout";
constexpr int logoSize = 72;
constexpr int makerLogoSize = 44;
constexpr int textWidth = 440;
constexpr double productSize = 1.5;  // of the window's font

}  // namespace

frmAbout::frmAbout(QWidget* parent) : QDialog(parent) {
    setObjectName("frmAbout");
    createControls();
    buildLayout();
    connect(cmdOk, &QPushButton::clicked, this, &QDialog::accept);
    Form_Load();
}

void frmAbout::createControls() {
    const auto label = [this](const char* name) {
        auto* made = ui::makeControl<QLabel>(this, name);
        made->setTextFormat(Qt::PlainText);
        return made;
    };
    picCorvaneLogo = label("picCorvaneLogo");
    picCorvaneLogo->setPixmap(QIcon(":/icons/corvane.svg").pixmap(logoSize, logoSize));
    picCorvaneLogo->setAccessibleName("Corvane");
    picMeridaneLogo = label("picMeridaneLogo");
    picMeridaneLogo->setAccessibleName("Meridane");
    picMeridaneLogo->setPixmap(QIcon(":/icons/meridane.svg").pixmap(makerLogoSize, makerLogoSize));
    lblProduct = label("lblProduct");
    QFont large = lblProduct->font();
    large.setPointSizeF(large.pointSizeF() * productSize);
    large.setBold(true);
    lblProduct->setFont(large);
    lblVersionTitle = label("lblVersionTitle");
    lblVersion = label("lblVersion");
    lblVersion->setTextInteractionFlags(Qt::TextSelectableByMouse);
    lblMeridaneAddress1 = label("lblMeridaneAddress1");
    QFont bold = lblMeridaneAddress1->font();
    bold.setBold(true);
    lblMeridaneAddress1->setFont(bold);
    lblMeridaneAddress2 = label("lblMeridaneAddress2");
    lblMeridaneAddress3 = label("lblMeridaneAddress3");
    lblCopyright = label("lblCopyright");
    lblTrademark = label("lblTrademark");
    for (QLabel* wrapped : {lblCopyright, lblTrademark}) {
        wrapped->setWordWrap(true);
        wrapped->setMinimumWidth(textWidth);
    }
    lblChangeLanguage = ui::makeControl<QPushButton>(this, "lblChangeLanguage");
    mnuSelectLanguage = ui::makeControl<QMenu>(this, "mnuSelectLanguage");
    mnuSelectLanguageTitle = mnuSelectLanguage->addSection(QString());
    lblChangeLanguage->setMenu(mnuSelectLanguage);
    lblChangeLanguage->setAutoDefault(false);
    cmdOk = ui::makeControl<QPushButton>(this, "cmdOk");
    cmdOk->setDefault(true);
}

void frmAbout::buildLayout() {
    auto* version = new QHBoxLayout;
    version->addWidget(lblVersionTitle);
    version->addWidget(lblVersion);
    version->addStretch();
    auto* product = new QVBoxLayout;
    product->setSpacing(4);
    product->addStretch();
    product->addWidget(lblProduct);
    product->addLayout(version);
    product->addStretch();
    auto* address = new QVBoxLayout;
    address->setSpacing(2);
    for (QLabel* line : {lblMeridaneAddress1, lblMeridaneAddress2, lblMeridaneAddress3})
        address->addWidget(line);

    auto* whole = new QGridLayout(this);
    whole->setContentsMargins(24, 24, 24, 16);
    whole->setHorizontalSpacing(20);
    whole->setVerticalSpacing(18);
    whole->setColumnStretch(1, 1);
    whole->addWidget(picCorvaneLogo, 0, 0, Qt::AlignCenter);
    whole->addLayout(product, 0, 1);
    whole->addWidget(picMeridaneLogo, 1, 0, Qt::AlignHCenter | Qt::AlignTop);
    whole->addLayout(address, 1, 1);
    whole->addWidget(lblCopyright, 2, 1);
    whole->addWidget(lblTrademark, 3, 1);
    whole->addLayout(ui::buttonRow({lblChangeLanguage}, {cmdOk}), 4, 0, 1, 2);
    // The window fits its words, also after a change of language.
    whole->setSizeConstraint(QLayout::SetFixedSize);
    ui::setTabOrder({cmdOk, lblChangeLanguage});
}

// Whoever opens this window reads it, so a failure is shown at once.
void frmAbout::Form_Load() {
    core::procedure(module, "Form_Load", [&](core::Frame&) {
        const auto show = [](auto&& action) { core::boxOnFailure("Error in FormLoad routine:", action); };
        show([&] { frmAbout_ControlInit(); });
        core::gRebuildingControls = true;
        show([&] { ui::setFormFonts(*this); });
        show([&] { showVersion(); });
        show([&] { fillLanguageList(); });
        core::gRebuildingControls = false;
    });
}

void frmAbout::showVersion() {
    const mdlVerInfo::ProgramVersion version = mdlVerInfo::programVersion();
    lblVersion->setText(QString("%1.%2 Build%3").arg(version.major).arg(version.minor).arg(version.revision));
}

void frmAbout::frmAbout_ControlInit() {
    core::procedure(module, "frmAbout_ControlInit", [&](core::Frame& frame) {
        setWindowTitle(ui::plainCaption(ui::text(1015)));
        lblProduct->setText(ui::text(1205));
        cmdOk->setText(ui::text(1001));
        lblMeridaneAddress1->setText(ui::text(1007));
        lblMeridaneAddress2->setText(ui::text(1002));
        lblMeridaneAddress3->setText(ui::text(1003));
        lblChangeLanguage->setText(ui::text(1004));
        lblTrademark->setText(ui::text(1005));
        lblCopyright->setText(ui::text(1006));
        lblVersionTitle->setText(ui::text(1008));
        frame.step([&] { showVersion(); });
        mnuSelectLanguage->setTitle(ui::text(1009));
        mnuSelectLanguageTitle->setText(ui::text(1009));
        for (QWidget* control : findChildren<QWidget*>())
            control->setToolTip(QString());
    });
}

void frmAbout::fillLanguageList() {
    modLocalize::InitalizeLanguages();
    new QActionGroup(mnuSelectLanguage);
    bool loaded = false;
    for (const std::string& code : core::gLanguages)
        if (!code.empty()) {
            addLanguage(ui::fromUtf8(modLocalize::languageCodeToName(code)),
                        modLocalize::languageCodeToId(code));
            loaded = true;
        }
    if (!loaded)
        addLanguage("No Languages Loaded", modLocalize::languageCodeToId("ENU"));
}

void frmAbout::addLanguage(const QString& caption, long id) {
    const std::size_t index = mnuLanguageList.size();
    QAction* item = mnuSelectLanguage->addAction(caption);
    item->setObjectName("mnuLanguageList_" + QString::number(index));
    item->setData(static_cast<qlonglong>(id));
    item->setCheckable(true);
    item->setChecked(id == core::gLanguageId);
    mnuSelectLanguage->findChild<QActionGroup*>()->addAction(item);
    connect(item, &QAction::triggered, this, [this, index] { mnuLanguageList_Click(index); });
    mnuLanguageList.push_back(item);
}

// A failure here is neither logged nor shown; the next statement runs.
void frmAbout::mnuLanguageList_Click(std::size_t index) {
    core::procedure(module, "mnuLanguageList_Click", [&](core::Frame&) {
        const auto quietly = [](auto&& action) {
            try {
                action();
            } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch)
            }
        };
        setCursor(Qt::WaitCursor);
        core::gRebuildingControls = true;
        quietly(
            [&] { core::gLanguageId = static_cast<long>(mnuLanguageList.at(index)->data().toLongLong()); });
        quietly([] { modLocalize::InitalizeLanguages(); });
        ui::forEachLoadedWindow([&](QWidget& window) {
            quietly([&] { ui::setFormFonts(window); });
            quietly([&] { ui::callProcedure(window, "_ControlInit"); });
            for (QWidget* control : window.findChildren<QWidget*>())
                control->update();
        });
        quietly([] { mdlDatabase::rebuildAddressDetailsTable(); });
        ui::forEachLoadedWindow(
            [&](QWidget& window) { quietly([&] { ui::callProcedure(window, "_AddressDetailsRebuilt"); }); });
        core::gRebuildingControls = false;
        setCursor(Qt::ArrowCursor);
    });
}

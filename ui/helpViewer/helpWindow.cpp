#include "ui/helpViewer/helpWindow.h"

#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QStyle>
#include <QTabWidget>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <functional>

#include "platform/libraries/chmFile.h"
#include "ui/base/controls.h"
#include "ui/base/text.h"
#include "ui/helpViewer/helpPages.h"
#include "ui/helpViewer/helpSearch.h"

namespace ui {

namespace {

constexpr int firstWidth = 970;  // pixels
constexpr int firstHeight = 680;
constexpr int sidebarWidth = 350;
constexpr int pageRole = Qt::UserRole;

QStringList wordsOf(const QString& text) {
    return text.simplified().split(' ', Qt::SkipEmptyParts);
}

QWidget* column(std::initializer_list<QWidget*> parts) {
    auto* widget = new QWidget;
    auto* layout = new QVBoxLayout(widget);
    layout->setContentsMargins(4, 6, 4, 4);
    for (QWidget* part : parts)
        layout->addWidget(part);
    return widget;
}

void addEntries(QTreeWidgetItem* parent, const std::vector<platform::ChmEntry>& entries) {
    for (const platform::ChmEntry& entry : entries) {
        auto* item = new QTreeWidgetItem(parent, {fromUtf8(entry.title)});
        item->setData(0, pageRole, fromUtf8(entry.page));
        addEntries(item, entry.children);
    }
}

}  // namespace

HelpWindow::HelpWindow() {
    setObjectName("helpWindow");
    setWindowIcon(QIcon(":/icons/console.svg"));
    resize(firstWidth, firstHeight);
    pages_ = new HelpPages(this);
    createSidebar();
    createActions();
    createLayout();
    connect(pages_, &QTextBrowser::sourceChanged, this, &HelpWindow::followPage);
}

HelpWindow::~HelpWindow() = default;

void HelpWindow::createSidebar() {
    contents_ = makeControl<QTreeWidget>(this, "helpContents");
    contents_->setHeaderHidden(true);
    const auto openEntry = [this](QTreeWidgetItem* item) {
        if (item)
            showPage(toUtf8(item->data(0, pageRole).toString()));
    };
    connect(contents_, &QTreeWidget::itemClicked, this, openEntry);
    connect(contents_, &QTreeWidget::itemActivated, this, openEntry);

    indexFilter_ = makeControl<QLineEdit>(this, "helpIndexFilter");
    indexFilter_->setPlaceholderText(plainCaption(text(1258)));
    indexFilter_->setClearButtonEnabled(true);
    index_ = makeControl<QListWidget>(this, "helpIndex");
    connect(indexFilter_, &QLineEdit::textChanged, this, [this](const QString& text) {
        for (int row = 0; row < index_->count(); ++row)
            index_->item(row)->setHidden(!index_->item(row)->text().contains(text, Qt::CaseInsensitive));
    });
    connect(index_, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { showPage(toUtf8(item->data(pageRole).toString())); });
    connect(index_, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { showPage(toUtf8(item->data(pageRole).toString())); });

    searchText_ = makeControl<QLineEdit>(this, "helpSearch");
    searchText_->setPlaceholderText(plainCaption(text(1258)));
    searchText_->setClearButtonEnabled(true);
    hits_ = makeControl<QListWidget>(this, "helpHits");
    connect(searchText_, &QLineEdit::textChanged, this, &HelpWindow::search);
    connect(searchText_, &QLineEdit::returnPressed, this, &HelpWindow::openHit);
    connect(hits_, &QListWidget::itemClicked, this, &HelpWindow::openHit);
    connect(hits_, &QListWidget::itemActivated, this, &HelpWindow::openHit);
}

void HelpWindow::createActions() {
    auto* bar = new QToolBar(this);
    bar->setObjectName("helpToolBar");
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    addToolBar(bar);
    const auto add =
        [&](const char* name, const QString& text, QStyle::StandardPixmap icon, const QKeySequence& keys) {
        QAction* action = bar->addAction(style()->standardIcon(icon), text);
        action->setObjectName(name);
        action->setShortcut(keys);
        return action;
    };
    // Words that the toolkit has for keys of this kind, in the console's language.
    const auto word = [](const char* english) { return QCoreApplication::translate("QShortcut", english); };
    back_ = add("helpBack", word("Back"), QStyle::SP_ArrowBack, QKeySequence(Qt::ALT | Qt::Key_Left));
    forward_ =
        add("helpForward", word("Forward"), QStyle::SP_ArrowForward, QKeySequence(Qt::ALT | Qt::Key_Right));
    home_ = add("helpHome", word("Home Page"), QStyle::SP_DirHomeIcon, QKeySequence(Qt::ALT | Qt::Key_Home));
    back_->setEnabled(false);
    forward_->setEnabled(false);
    connect(back_, &QAction::triggered, pages_, &QTextBrowser::backward);
    connect(forward_, &QAction::triggered, pages_, &QTextBrowser::forward);
    connect(home_, &QAction::triggered, this, [this] { showPage(file_->defaultPage()); });
    connect(pages_, &QTextBrowser::backwardAvailable, back_, &QAction::setEnabled);
    connect(pages_, &QTextBrowser::forwardAvailable, forward_, &QAction::setEnabled);

    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, [this] {
        sidebar_->setCurrentIndex(sidebar_->count() - 1);
        searchText_->setFocus();
        searchText_->selectAll();
    });
    connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this, &QWidget::close);
}

void HelpWindow::createLayout() {
    sidebar_ = makeControl<QTabWidget>(this, "helpSidebar");
    // The words that the console has in its string table are in its language.
    sidebar_->addTab(column({contents_}), plainCaption(text(1014)));
    sidebar_->addTab(column({indexFilter_, index_}), "Index");
    sidebar_->addTab(column({searchText_, hits_}), plainCaption(text(1258)));
    contents_->setAccessibleName(sidebar_->tabText(0));
    index_->setAccessibleName(sidebar_->tabText(1));
    searchText_->setAccessibleName(sidebar_->tabText(2));
    indexFilter_->setAccessibleName(sidebar_->tabText(1));
    hits_->setAccessibleName(sidebar_->tabText(2));
    auto* splitter = makeControl<QSplitter>(this, "helpSplitter");
    splitter->addWidget(sidebar_);
    splitter->addWidget(pages_);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({sidebarWidth, firstWidth - sidebarWidth});
    splitter->setChildrenCollapsible(false);
    setCentralWidget(splitter);
}

void HelpWindow::setFile(std::shared_ptr<const platform::ChmFile> file) {
    file_ = std::move(file);
    search_ = std::make_unique<HelpSearch>(*file_);
    setWindowTitle(fromUtf8(file_->title().empty() ? file_->defaultPage() : file_->title()));
    pages_->setFile(file_);
    fillContents();
    fillIndex();
    searchText_->clear();
    showPage(file_->defaultPage());
}

void HelpWindow::showPage(const std::string& page) {
    if (!page.empty())
        pages_->setSource(helpUrl(fromUtf8(page)));
}

void HelpWindow::fillContents() {
    contents_->clear();
    addEntries(contents_->invisibleRootItem(), file_->contents());
    // A file without contents shows its pages.
    if (file_->contents().empty())
        for (const std::string& page : file_->pages())
            addEntries(contents_->invisibleRootItem(), {{toUtf8(search_->title(fromUtf8(page))), page, {}}});
    contents_->expandToDepth(0);
}

void HelpWindow::fillIndex() {
    index_->clear();
    indexFilter_->clear();
    for (const platform::ChmEntry& entry : file_->index()) {
        auto* item = new QListWidgetItem(fromUtf8(entry.title), index_);
        item->setData(pageRole, fromUtf8(entry.page));
    }
    sidebar_->setTabVisible(1, index_->count() > 0);
}

void HelpWindow::search() {
    hits_->clear();
    for (const HelpHit& hit : search_->find(wordsOf(searchText_->text()))) {
        auto* item = new QListWidgetItem(hit.title, hits_);
        item->setData(pageRole, hit.page);
    }
}

void HelpWindow::openHit() {
    QListWidgetItem* hit = hits_->currentItem() ? hits_->currentItem() : hits_->item(0);
    if (hit)
        pages_->showFound(hit->data(pageRole).toString(), wordsOf(searchText_->text()));
}

// Marks the entry of the contents that stands for the page shown: the one with the anchor, else the page's.
void HelpWindow::followPage(const QUrl& url) {
    QTreeWidgetItem* best = nullptr;
    const std::function<void(QTreeWidgetItem*)> walk = [&](QTreeWidgetItem* item) {
        const QUrl entry = helpUrl(item->data(0, pageRole).toString());
        if (entry == url || (!best && entry == url.adjusted(QUrl::RemoveFragment)))
            best = item;
        for (int i = 0; i < item->childCount(); ++i)
            walk(item->child(i));
    };
    walk(contents_->invisibleRootItem());
    if (best)
        contents_->setCurrentItem(best);
    pages_->setAccessibleName(pages_->documentTitle());
}

}  // namespace ui

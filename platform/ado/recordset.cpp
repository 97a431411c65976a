#include <utility>

#include "platform/ado/ado.h"
#include "platform/ado/cursor.h"
#include "platform/ado/edits.h"
#include "platform/ado/resultRows.h"

namespace platform {

namespace {

enum class Reading { all, inBlocks, none };

}  // namespace

struct Recordset::Impl {
    Impl(Connection& connection, const Query& source, std::unique_ptr<ado::RowSource> opened, LockType lock)
        // Pessimistic is optimistic here: nothing is held from set to update, because the service must not
        // wait for an administrator who looks at a row.
        : rows(connection, source, std::move(opened), lock != LockType::readOnly),
          cursor(rows),
          edits(connection, rows, cursor, lock == LockType::batchOptimistic) {}

    // Nothing for a statement without rows, which runs here.
    static std::unique_ptr<Impl> open(const Query& source, Connection& connection, LockType lock,
                                      Reading reading);

    void read(Reading reading);
    // A field of the present row as it is read, with what was set in it.
    ado::Cell cell(std::string_view name);

    ado::ResultRows rows;
    ado::Cursor cursor;
    ado::Edits edits;
    bool counted = true;
    bool begun = false;  // next has been at the first row
};

namespace {

template <typename ImplPointer>
auto& opened(const ImplPointer& impl) {
    if (!impl)
        throw makeFailure(objectClosed);
    return *impl;
}

}  // namespace

void Recordset::Impl::read(Reading reading) {
    if (reading == Reading::none)
        rows.readNone();
    else if (reading == Reading::inBlocks && !rows.isWritable())
        rows.readFirstBlock();
    else
        rows.readAll();
}

std::unique_ptr<Recordset::Impl> Recordset::Impl::open(const Query& source, Connection& connection,
                                                       LockType lock, Reading reading) {
    for (bool again = false;; again = true) {
        std::unique_ptr<ado::RowSource> selected = ado::openRows(connection, source);
        if (!selected)
            return nullptr;
        auto impl = std::make_unique<Impl>(connection, source, std::move(selected), lock);
        try {
            impl->read(reading);
            return impl;
        } catch (const Failure&) {
            // What was prepared for another schema is of no use any more.
            if (again || !impl->rows.columnsChanged())
                throw;
        }
    }
}

ado::Cell Recordset::Impl::cell(std::string_view name) {
    const std::size_t field = rows.fieldIndex(name);
    if (const Value* value = edits.valueOf(field))
        return ado::cellOf(*value);
    return edits.isAdding() ? ado::cellOf(Null{}) : rows.cell(cursor.present(), field);
}

Recordset::Recordset() = default;
Recordset::~Recordset() = default;
Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;

void Recordset::open(const Query& source, Connection& connection, CursorType cursor, LockType lock,
                     CursorLocation location) {
    if (impl_)
        throw makeFailure(objectOpen);
    const bool counted = cursor != CursorType::forwardOnly || location == CursorLocation::client;
    impl_ = Impl::open(source, connection, lock, counted ? Reading::all : Reading::inBlocks);
    if (impl_)
        impl_->counted = counted;
}

void Recordset::openForAdding(std::string_view table, Connection& connection, LockType lock) {
    if (impl_)
        throw makeFailure(objectOpen);
    impl_ = Impl::open("SELECT * FROM " + std::string(table), connection, lock, Reading::none);
}

void Recordset::close() {
    opened(impl_);
    impl_.reset();
}

ObjectState Recordset::state() const noexcept {
    return impl_ ? ObjectState::open : ObjectState::closed;
}

bool Recordset::EOF_() const {
    const Impl& impl = opened(impl_);
    return !impl.edits.isAdding() && impl.cursor.atEnd();
}

bool Recordset::BOF_() const {
    const Impl& impl = opened(impl_);
    return EOF_() && impl.rows.begin() == 0 && impl.rows.liveCount() == 0;
}

void Recordset::moveFirst() {
    Impl& impl = opened(impl_);
    impl.edits.drop();
    impl.begun = false;
    impl.cursor.moveFirst();
}

bool Recordset::next() {
    Impl& impl = opened(impl_);
    if (std::exchange(impl.begun, true) && !EOF_())
        moveNext();
    return !EOF_();
}

void Recordset::moveNext() {
    Impl& impl = opened(impl_);
    impl.edits.drop();
    impl.cursor.moveNext();
}

void Recordset::find(std::string_view criterion, long skip) {
    const Impl& impl = opened(impl_);
    if (impl.cursor.atEnd())
        throw makeFailure(noCurrentRecord);
    find(criterion, skip, impl.cursor.position());
}

void Recordset::find(std::string_view criterion, long skip, std::size_t start) {
    Impl& impl = opened(impl_);
    impl.edits.drop();
    impl.cursor.find(criterion, skip, start);
}

std::size_t Recordset::bookmark() const {
    const Impl& impl = opened(impl_);
    if (impl.edits.isAdding())
        throw makeFailure(noCurrentRecord);
    impl.cursor.present();
    return impl.cursor.position();
}

long Recordset::recordCount() const {
    const Impl& impl = opened(impl_);
    return impl.counted ? static_cast<long>(impl.rows.liveCount()) : -1;
}

std::size_t Recordset::fieldCount() const {
    return opened(impl_).rows.fields().size();
}

const std::string& Recordset::fieldName(std::size_t index) const {
    const std::vector<ado::Field>& fields = opened(impl_).rows.fields();
    if (index >= fields.size())
        throw makeFailure(itemNotFound);
    return fields[index].name;
}

Value Recordset::value(std::string_view field) const {
    return ado::valueOf(opened(impl_).cell(field));
}

bool Recordset::isNull(std::string_view field) const {
    return opened(impl_).cell(field).isNull();
}

std::string Recordset::text(std::string_view field) const {
    return ado::textOf(opened(impl_).cell(field));
}

long Recordset::number(std::string_view field) const {
    return ado::longOf(opened(impl_).cell(field));
}

bool Recordset::boolean(std::string_view field) const {
    return ado::booleanOf(opened(impl_).cell(field));
}

void Recordset::set(std::string_view field, Value value) {
    opened(impl_).edits.set(field, std::move(value));
}

void Recordset::addNew() {
    opened(impl_).edits.addNew();
}

void Recordset::update() {
    opened(impl_).edits.update();
}

void Recordset::deleteCurrent() {
    opened(impl_).edits.deleteCurrent();
}

void Recordset::updateBatch() {
    opened(impl_).edits.updateBatch();
}

}  // namespace platform

// The reconciliation of a recipient's stored devices with his record. There are three kinds of device to it:
// those with a single address, those with a list of addresses, and those that are switched on or off. A
// device that survives keeps its key, so that it stays on its events.
#include <algorithm>
#include <optional>

#include "core/classLog.h"
#include "core/procedure.h"
#include "database/devices.h"
#include "database/recipients.h"
#include "database/rows.h"
#include "platform/machine/caseFold.h"

using core::Frame;

namespace mdlDatabase {

namespace {

constexpr std::string_view nodeKeyPrefix = "DeviceKey:";

struct DeviceKind {
    DeviceType type;
    const char* name;  // in the log's lines
};

constexpr DeviceKind voiceMailKind{voiceMail, "voicemail"};
constexpr DeviceKind emailKind{email, "email"};
constexpr DeviceKind pagerKind{pager, "pager"};
constexpr DeviceKind smtpKind{smtpAddress, "SMTP"};
constexpr DeviceKind snmpTrapKind{snmpTrap, "SNMP Trap"};
constexpr DeviceKind syslogKind{syslog, "Syslog"};
constexpr DeviceKind failoverKind{failover, "Failover"};

struct StoredDevice {
    long key = 0;
    std::string address;
    bool active = false;
};

// What the blocks of one save share, and the few statements that they are made of.
class Save {
  public:
    Save(Frame& frame, long recipientKey, std::string name)
        : frame_(frame),
          recipientKey_(recipientKey),
          name_(std::move(name)),
          devices_(frame),
          newDevices_(frame),
          sought_(frame) {}

    // False when the stored devices could not be read.
    bool open() {
        const bool read = devices_.openForReading(
            {"SELECT DeviceRecipient.RecipientKey, Device.DeviceKey, Device.DeviceType, "
             "Device.DeviceAddress, Device.DeviceActive "
             "FROM Device INNER JOIN DeviceRecipient ON Device.DeviceKey = DeviceRecipient.DeviceKey "
             "WHERE DeviceRecipient.RecipientKey = ?",
             {recipientKey_}});
        newDevices_.openForAdding("Device");
        return read;
    }
    void close() {
        devices_.close();
        newDevices_.close();
    }

    // The recipient's first stored device of a kind.
    std::optional<StoredDevice> first(const DeviceKind& kind) {
        return devices_.find(criterion(kind)) ? present() : std::nullopt;
    }
    // The one after the present one.
    std::optional<StoredDevice> next(const DeviceKind& kind) {
        return devices_.findNext(criterion(kind)) ? present() : std::nullopt;
    }

    // "Creating voicemail device for NAME (ADDRESS)"
    std::string line(const char* doing, const DeviceKind& kind, const std::string& address) const {
        return opening(doing, kind) + " (" + address + ")";
    }
    void log(const std::string& text) const { core::gLog().log(text, core::logInfo, frame_.tag()); }
    void logNoDevice(const DeviceKind& kind) const {
        log(std::string("No ") + kind.name + " device was added for " + name_);
    }
    void logChange(const DeviceKind& kind, const std::string& from, const std::string& to) const {
        log(opening("Modifying", kind) + " Prev: " + from + " New: " + to);
    }

    void create(const DeviceKind& kind, const std::string& address) {
        const long key = createDevice(frame_, newDevices_, {kind.type, address, recipientKey_},
                                      line("Creating", kind, address));
        if (key != 0)
            addToExistingEvents(recipientKey_, key);
    }

    // Makes a stored device the sought one; false when somebody else has deleted it.
    bool seek(long deviceKey) {
        return sought_.openForWriting({"SELECT * FROM Device WHERE DeviceKey = ?", {deviceKey}}) &&
               sought_.hasRow();
    }
    // Switches the sought device on, with another address where one is given.
    void activateSought(const std::optional<std::string>& address) {
        if (address)
            sought_.set("DeviceAddress", *address);
        sought_.set("DeviceActive", true);
        sought_.update();
    }

    // Deletions of lists and switches come last, after everything else is written.
    void deleteLater(long deviceKey) { toDelete_.push_back(deviceKey); }
    void deleteCollected() {
        for (const long key : toDelete_)
            deleteDevice(key);
    }

  private:
    static std::string criterion(const DeviceKind& kind) {
        return "DeviceType = " + std::to_string(static_cast<long>(kind.type));
    }
    std::string opening(const char* doing, const DeviceKind& kind) const {
        return std::string(doing) + " " + kind.name + " device for " + name_;
    }
    // The present row of the recipient's devices; nothing when it cannot be read.
    std::optional<StoredDevice> present() {
        std::optional<StoredDevice> device;
        frame_.step([&] {
            const platform::Recordset& row = devices_.recordset();
            device = {row.number("DeviceKey"), platform::valueText(row.value("DeviceAddress")),
                      row.boolean("DeviceActive")};
        });
        return device;
    }

    Frame& frame_;
    long recipientKey_;
    std::string name_;
    Rows devices_;     // the recipient's
    Rows newDevices_;  // everybody's, for adding
    Rows sought_;      // the one that is changed
    std::vector<long> toDelete_;
};

void saveSingleAddress(Save& save, const DeviceKind& kind, const std::string& wanted) {
    const std::optional<StoredDevice> stored = save.first(kind);
    if (!stored) {
        if (wanted.empty())
            save.logNoDevice(kind);
        else
            save.create(kind, wanted);
    } else if (wanted.empty()) {
        save.log(save.line("Deleting", kind, stored->address));
        deleteDevice(stored->key);
    } else if (stored->address != wanted) {
        save.logChange(kind, stored->address, wanted);
        if (save.seek(stored->key))
            save.activateSought(wanted);
    }
}

void saveList(Save& save, const DeviceKind& kind, const std::vector<AddressEntry>& entries) {
    for (std::optional<StoredDevice> stored = save.first(kind); stored; stored = save.next(kind)) {
        const std::string nodeKey = std::string(nodeKeyPrefix) + std::to_string(stored->key);
        const auto entry = std::find_if(entries.begin(), entries.end(), [&](const AddressEntry& each) {
            return platform::equalsIgnoringAsciiCase(each.nodeKey, nodeKey);
        });
        if (entry == entries.end()) {
            save.log(save.line("Deleting", kind, stored->address));
            save.deleteLater(stored->key);
        } else if (stored->address != entry->address && save.seek(stored->key)) {
            save.logChange(kind, stored->address, entry->address);
            save.activateSought(entry->address);
        }
    }
    for (const AddressEntry& entry : entries) {
        if (entry.nodeKey.empty())
            save.create(kind, entry.address);
    }
}

// Required: a device with a host of its own is rewritten at every save while it is on, and goes when it is
// off, whatever its state. One without is left alone where it already is what the switch says, so that an
// inactive one stays when it is off.
void saveSwitch(Save& save, const DeviceKind& kind, bool on, const std::string& address) {
    const bool hasHost = kind.type == syslog;
    const std::optional<StoredDevice> stored = save.first(kind);
    if (!stored) {
        if (on)
            save.create(kind, address);
        else
            save.logNoDevice(kind);
    } else if (on && hasHost) {
        save.log(save.line("Activating", kind, stored->address));
        if (save.seek(stored->key))
            save.activateSought(address);
    } else if (on && !stored->active) {
        if (save.seek(stored->key))
            save.activateSought(std::nullopt);
    } else if (!on && (hasHost || stored->active)) {
        save.log(save.line("Deleting", kind, stored->address));
        save.deleteLater(stored->key);
    }
}

}  // namespace

void modifyRecipient(long recipientKey, const RecipientRecord& record) {
    core::procedure("mdlDatabase", "modifyRecipient", [&](Frame& frame) {
        Rows recipient(frame);
        const bool read = recipient.openForWriting(
            {"SELECT RecipientName, RecipientActive FROM Recipients WHERE RecipientKey = ?", {recipientKey}});
        Save save(frame, recipientKey, record.name);
        const bool devicesRead = save.open();
        if (read && recipient.atEnd()) {
            core::gLog().log("Could not find a recipient with RecipientKey = " +
                                 std::to_string(recipientKey) + " Name: " + record.name,
                             core::logError, frame.tag());
            return;
        }
        // Devices of a recipient whom nobody knows to be there could be nobody's.
        if (!read)
            return;
        recipient.set("RecipientName", record.name);
        recipient.set("RecipientActive", record.active);
        recipient.update();
        // Whoever does not know what is stored would store it a second time.
        if (!devicesRead)
            return;
        saveSingleAddress(save, voiceMailKind, record.voiceMailDirectoryId);
        saveSingleAddress(save, emailKind, record.emailDirectoryId);
        saveList(save, pagerKind, record.pagerNumbers);
        saveList(save, smtpKind, record.smtpAddresses);
        saveSwitch(save, snmpTrapKind, record.snmpTrapEnabled, snmpTrapAddress);
        saveSwitch(save, syslogKind, record.syslogEnabled, record.syslogHostAddress);
        saveSwitch(save, failoverKind, record.failoverEnabled, failoverAddress);
        save.deleteCollected();
        recipient.close();
        save.close();
    });
}

}  // namespace mdlDatabase

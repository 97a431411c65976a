-- The template of the configuration database: all tables, their indexes, the settings' defaults and the
-- built-in events. The console copies it to QLNDB.MDB when there is none; the service reads that file.
--
-- Column types are words of the recordset layer, which holds to them on write: AUTONUMBER keys are
-- INTEGER PRIMARY KEY AUTOINCREMENT, LONG and SHORT are signed 32 and 16 bits, BOOLEAN is -1 or 0, TEXT(n)
-- takes n characters and TEXT any number, DATETIME is ISO 8601 text in local time. Text compares without
-- regard to case.

CREATE TABLE Events (
    EventKey INTEGER PRIMARY KEY AUTOINCREMENT,
    EventSource TEXT COLLATE NOCASE,
    EventId LONG,
    EventTitle TEXT COLLATE NOCASE,
    EventType SHORT,
    EventActive BOOLEAN NOT NULL DEFAULT 0,
    EventCollection BOOLEAN NOT NULL DEFAULT 0,
    EventLastNotification DATETIME
);

CREATE TABLE Contents (
    EventKey LONG,
    ContentType LONG,
    ContentAttachment TEXT COLLATE NOCASE,
    ContentPriority LONG,
    ContentSubject TEXT COLLATE NOCASE,
    ContentNote TEXT COLLATE NOCASE
);
CREATE INDEX ContentsEvent ON Contents(EventKey);

CREATE TABLE Recipients (
    RecipientKey INTEGER PRIMARY KEY AUTOINCREMENT,
    RecipientName TEXT COLLATE NOCASE,
    RecipientActive BOOLEAN NOT NULL DEFAULT 0
);

CREATE TABLE Device (
    DeviceKey INTEGER PRIMARY KEY AUTOINCREMENT,
    DeviceType LONG,
    DeviceAddress TEXT COLLATE NOCASE,
    DeviceActive BOOLEAN NOT NULL DEFAULT 0
);

CREATE TABLE DeviceRecipient (
    DeviceKey LONG,
    RecipientKey LONG
);
CREATE INDEX DeviceRecipientDevice ON DeviceRecipient(DeviceKey);
CREATE INDEX DeviceRecipientRecipient ON DeviceRecipient(RecipientKey);

CREATE TABLE EventDevice (
    EventKey LONG,
    DeviceKey LONG,
    Active BOOLEAN NOT NULL DEFAULT 0
);
CREATE INDEX EventDeviceEvent ON EventDevice(EventKey);
CREATE INDEX EventDeviceDevice ON EventDevice(DeviceKey);

CREATE TABLE AddressDetails (
    DeviceAddress TEXT COLLATE NOCASE,
    DisplayName TEXT COLLATE NOCASE,
    AddressType LONG,
    DeviceKey LONG
);
CREATE INDEX AddressDetailsAddress ON AddressDetails(DeviceAddress);
CREATE INDEX AddressDetailsDevice ON AddressDetails(DeviceKey);

CREATE TABLE Configuration (
    Setting TEXT(64) COLLATE NOCASE,
    Value TEXT COLLATE NOCASE
);

CREATE TABLE Exclusions (
    ExclusionKey INTEGER CONSTRAINT "PrimaryKey" PRIMARY KEY AUTOINCREMENT,
    EventSource TEXT(50) COLLATE NOCASE,
    EventId LONG
);
-- The first exclusion has the key 0.
INSERT INTO sqlite_sequence(name, seq) VALUES ('Exclusions', -1);

CREATE TABLE NotificationLog (
    LogKey LONG,
    LogTime DATETIME,
    EventSource TEXT COLLATE NOCASE,
    EventID LONG,
    DeviceAddress TEXT COLLATE NOCASE,
    Success TEXT
);

CREATE TABLE "31Sources" (
    EventSource TEXT(255) COLLATE NOCASE
);

-- Minutes, seconds, days. The defaults of an event's content are filled in by the console's first run, in
-- its language.
INSERT INTO Configuration(Setting, Value) VALUES
    ('EventNotificationInterval', '15'),
    ('PollingInterval', '10'),
    ('ReportDataAging', '30'),
    ('MaxDiag', '0'),
    ('WarnOnDuplicateMonitoredEvents', '-1'),
    ('OutputFilePath', '');

-- The scratch event of the test notification, which no view shows, and the catch-all event, which can be
-- switched off but not deleted.
INSERT INTO Events(EventSource, EventId, EventTitle, EventType, EventActive, EventCollection) VALUES
    ('QLNTest', 10001, '$$IGNORE', 4, 0, 0),
    ('MeridaneCorvane', -1, 'All Meridane Corvane Errors', 1, 0, -1);

-- Every event has a voice and an e-mail content. The console overwrites that of the scratch event at each test.
INSERT INTO Contents(EventKey, ContentType, ContentAttachment, ContentPriority, ContentSubject, ContentNote)
    SELECT EventKey, ContentType, CASE ContentType WHEN 1 THEN 'QLN_Default_ENU.wav' END, 1,
        'Meridane Corvane server <Type> event, <Source>[<Event>] on <Computer>',
        'Event Type:        <Type>' || char(13, 10) ||
        'Event Source:      <Source>' || char(13, 10) ||
        'Event Category:    <Category>' || char(13, 10) ||
        'Event ID:          <Event>' || char(13, 10) ||
        'Date:              <Date>' || char(13, 10) ||
        'Time:              <Time>' || char(13, 10) ||
        'User:              <User>' || char(13, 10) ||
        'Computer:          <Computer>' || char(13, 10) ||
        'Description:       ' || char(13, 10) ||
        '<Description>' || char(13, 10) ||
        'Notes:             <Notes>'
    FROM Events, (SELECT 1 AS ContentType UNION ALL SELECT 3);

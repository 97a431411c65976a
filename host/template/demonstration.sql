-- What the administrator of the demonstration has entered, and what the service has done since: recipients with
-- their devices, monitored events, exclusions, and the history of some days. It goes on top of the template.
--
-- The temporary table Entries has the ids of the directory's entries by their kind and alias. AddressDetails
-- stays empty, because the console makes it anew at every start.

INSERT INTO Recipients(RecipientKey, RecipientName, RecipientActive) VALUES
    (1, 'Night desk', -1),
    (2, 'Anneliese Almeida', -1),
    (3, 'Field engineers', -1),
    (4, 'Log host', -1),
    (5, 'Former archivist', -1),
    (6, 'Holiday cover', 0),
    (7, 'Standby server', -1);

-- 1 voice mail, 3 e-mail, 4 SMTP address, 6 syslog, 7 failover. The archivist's mailbox is gone, so the console
-- has cut off the device.
CREATE TEMP TABLE Devices(DeviceKey, RecipientKey, DeviceType, Address, DeviceActive);
INSERT INTO Devices VALUES
    (1, 1, 1, 'list dl-dutymanagers', -1),
    (2, 1, 4, 'night.desk@example.net', -1),
    (3, 2, 1, 'subscriber aalmeida', -1),
    (4, 2, 3, 'subscriber aalmeida', -1),
    (5, 3, 3, 'list dl-fieldengineers', -1),
    (6, 4, 6, 'loghost.example.net', -1),
    (7, 5, 1, 'subscriber archivist', 0),
    (8, 6, 4, 'holiday.cover@example.net', -1),
    (9, 7, 4, 'standby@example.net', -1),
    (10, 7, 7, 'Failover', -1);
INSERT INTO Device(DeviceKey, DeviceType, DeviceAddress, DeviceActive)
    SELECT DeviceKey, DeviceType, coalesce(Id, Address), DeviceActive
    FROM Devices LEFT JOIN Entries ON Entry = Address;
INSERT INTO DeviceRecipient(DeviceKey, RecipientKey) SELECT DeviceKey, RecipientKey FROM Devices;

-- 1 errors, 2 warnings too, 4 informational events too. The keys 1 and 2 are the template's.
INSERT INTO Events(EventKey, EventSource, EventId, EventTitle, EventType, EventActive) VALUES
    (3, 'MeridaneCorvane_MessageStore', 4711, 'Store away: wake the duty manager', 1, -1),
    (4, 'MeridaneCorvane_Telephony', 120, 'A telephone port is down', 1, -1),
    (5, 'MeridaneCorvane_SwitchLink', 2210, 'The line to the switch is unsteady', 2, -1),
    (6, 'MeridaneCorvane_License', 1003, 'Licences in use', 4, 0);
UPDATE Events SET EventActive = -1 WHERE EventCollection;
INSERT INTO Contents(EventKey, ContentType, ContentAttachment, ContentPriority, ContentSubject, ContentNote)
    SELECT Events.EventKey, ContentType, ContentAttachment, ContentPriority, ContentSubject, ContentNote
    FROM Events JOIN Contents ON Contents.EventKey = 2 WHERE Events.EventKey > 2;
UPDATE Contents SET ContentPriority = 2 WHERE EventKey = 3;
UPDATE Contents SET ContentSubject = '<Computer>: a telephone port is down (<Source> <Event>)' WHERE EventKey = 4;

INSERT INTO EventDevice(EventKey, DeviceKey, Active) VALUES
    (2, 1, -1),
    (2, 2, -1),
    (3, 1, -1),
    (3, 2, -1),
    (3, 6, -1),
    (4, 3, -1),
    (4, 4, -1),
    (5, 5, 0);

-- The ports have an event of their own, and what the announcements complain of wakes nobody.
INSERT INTO Exclusions(ExclusionKey, EventSource, EventId) VALUES
    (0, 'MeridaneCorvane_Telephony', 120),
    (1, 'MeridaneCorvane_AudioText', -1);

-- Each stands in the event log so many minutes before this moment; the notification came two seconds later.
CREATE TEMP TABLE Told(MinutesAgo, EventKey, EventSource, EventId);
INSERT INTO Told VALUES
    (8400, 4, 'MeridaneCorvane_Telephony', 120),
    (5580, 3, 'MeridaneCorvane_MessageStore', 4711),
    (2760, 2, 'MeridaneCorvane_MailRouter', 88),
    (1500, 4, 'MeridaneCorvane_Telephony', 120),
    (582, 3, 'MeridaneCorvane_MessageStore', 4711),
    (485, 4, 'MeridaneCorvane_Telephony', 120);
INSERT INTO NotificationLog(LogKey, LogTime, EventSource, EventID, DeviceAddress, Success)
    SELECT row_number() OVER (ORDER BY MinutesAgo DESC, DeviceKey),
        datetime('now', -MinutesAgo || ' minutes', '2 seconds', 'localtime'), EventSource, EventId, DeviceAddress,
        CASE DeviceType WHEN 6 THEN 'Handed over to ' || DeviceAddress || ' by UDP' ELSE 'In the host''s mailbox' END
    FROM Told JOIN EventDevice USING (EventKey) JOIN Device USING (DeviceKey)
    WHERE Active;
UPDATE Events SET EventLastNotification =
    (SELECT datetime('now', -min(MinutesAgo) || ' minutes', '2 seconds', 'localtime')
     FROM Told WHERE Told.EventKey = Events.EventKey);

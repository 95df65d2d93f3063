<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>ActionsView</name>
    <message>
        <source>Read label</source>
        <translation>Name lesen</translation>
    </message>
    <message>
        <source>Read groups</source>
        <translation>Gruppen lesen</translation>
    </message>
    <message>
        <source>Read firmware version</source>
        <translation>Firmwareversion lesen</translation>
    </message>
    <message>
        <source>Wink</source>
        <translation>Zwinkern</translation>
    </message>
    <message>
        <source>Move up</source>
        <translation>Auffahren</translation>
    </message>
    <message>
        <source>Move down</source>
        <translation>Abfahren</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Read position</source>
        <translation>Position lesen</translation>
    </message>
    <message>
        <source>Read end limits</source>
        <translation>Endlagen lesen</translation>
    </message>
    <message>
        <source>Read intermediate positions</source>
        <translation>Zwischenpositionen lesen</translation>
    </message>
    <message>
        <source>Read direction</source>
        <translation>Drehrichtung lesen</translation>
    </message>
    <message>
        <source>Read speeds</source>
        <translation>Geschwindigkeiten lesen</translation>
    </message>
    <message>
        <source>Read ramps</source>
        <translation>Rampen lesen</translation>
    </message>
    <message>
        <source>Devices selected: %1</source>
        <translation>Ausgewählte Geräte: %1</translation>
    </message>
    <message>
        <source>Run</source>
        <translation>Ausführen</translation>
    </message>
    <message>
        <source>%1: %2 done, %3 failed</source>
        <translation>%1: %2 erledigt, %3 fehlgeschlagen</translation>
    </message>
    <message>
        <source>, running</source>
        <translation>, läuft</translation>
    </message>
    <message>
        <source>Choose an action and run it on the selected devices.</source>
        <translation>Wählen Sie eine Aktion und führen Sie sie auf den ausgewählten Geräten aus.</translation>
    </message>
    <message>
        <source>Device</source>
        <translation>Gerät</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>Ergebnis</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>fehlgeschlagen</translation>
    </message>
    <message>
        <source>waiting</source>
        <translation>wartet</translation>
    </message>
    <message>
        <source>queued</source>
        <translation>eingereiht</translation>
    </message>
    <message>
        <source>running</source>
        <translation>läuft</translation>
    </message>
    <message>
        <source>done</source>
        <translation>erledigt</translation>
    </message>
    <message>
        <source>%1 on %2 devices?</source>
        <translation>%1 auf %2 Geräten?</translation>
    </message>
    <message>
        <source>Not sent to %1 of the selected devices, their rows are invalid (forget them and discover the devices again):</source>
        <translation>An %1 der ausgewählten Geräte nicht gesendet, ihre Zeilen sind ungültig (entfernen Sie sie und suchen Sie die Geräte erneut):</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>and %1 more</source>
        <translation>und %1 weitere</translation>
    </message>
    <message>
        <source>%1: sent to no device</source>
        <translation>%1: an kein Gerät gesendet</translation>
    </message>
</context>
<context>
    <name>AskFirst</name>
    <message>
        <source>Please confirm</source>
        <translation>Bitte bestätigen</translation>
    </message>
</context>
<context>
    <name>BackupView</name>
    <message>
        <source>Backup file</source>
        <translation>Sicherungsdatei</translation>
    </message>
    <message>
        <source>/path/to/site.json</source>
        <translation>/pfad/zu/anlage.json</translation>
    </message>
    <message>
        <source>Save backup</source>
        <translation>Sicherung speichern</translation>
    </message>
    <message>
        <source>Document</source>
        <translation>Dokument</translation>
    </message>
    <message>
        <source>a backup to compare with the devices</source>
        <translation>eine Sicherung zum Vergleich mit den Geräten</translation>
    </message>
    <message>
        <source>Open and compare</source>
        <translation>Öffnen und vergleichen</translation>
    </message>
    <message>
        <source>of another bus</source>
        <translation>eines anderen Busses</translation>
    </message>
    <message>
        <source>Report</source>
        <translation>Bericht</translation>
    </message>
    <message>
        <source>/path/to/report.pdf (an .html is written beside it)</source>
        <translation>/pfad/zu/bericht.pdf (daneben entsteht eine .html)</translation>
    </message>
    <message>
        <source>Export report…</source>
        <translation>Bericht exportieren …</translation>
    </message>
    <message>
        <source>No document open</source>
        <translation>Kein Dokument geöffnet</translation>
    </message>
    <message>
        <source>%1: %2 device(s), %3 difference(s)</source>
        <translation>%1: %2 Gerät(e), %3 Unterschied(e)</translation>
    </message>
    <message>
        <source>Device</source>
        <translation>Gerät</translation>
    </message>
    <message>
        <source>Field</source>
        <translation>Feld</translation>
    </message>
    <message>
        <source>Device value</source>
        <translation>Wert im Gerät</translation>
    </message>
    <message>
        <source>Apply all</source>
        <translation>Alle übernehmen</translation>
    </message>
    <message>
        <source>Apply selected (%1)</source>
        <translation>Ausgewählte übernehmen (%1)</translation>
    </message>
    <message>
        <source>Replace device…</source>
        <translation>Gerät ersetzen …</translation>
    </message>
</context>
<context>
    <name>ConnectionView</name>
    <message>
        <source>Opened %1</source>
        <translation>%1 geöffnet</translation>
    </message>
    <message>
        <source>no bus</source>
        <translation>kein Bus</translation>
    </message>
    <message>
        <source>multicast group %1, port %2, on %3</source>
        <translation>Multicast-Gruppe %1, Port %2, über %3</translation>
    </message>
    <message>
        <source>serial port %1</source>
        <translation>serielle Schnittstelle %1</translation>
    </message>
    <message>
        <source>Discovery failed: %1</source>
        <translation>Suche fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>Discovery: %1 found, %2 new, %3 known, %4 missing</source>
        <translation>Suche: %1 gefunden, %2 neu, %3 bekannt, %4 fehlen</translation>
    </message>
    <message>
        <source>Serial port</source>
        <translation>Serielle Schnittstelle</translation>
    </message>
    <message>
        <source>Reload</source>
        <translation>Neu laden</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Multicast</source>
        <translation>Multicast</translation>
    </message>
    <message>
        <source>Group</source>
        <translation>Gruppe</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Port</translation>
    </message>
    <message>
        <source>Bind address</source>
        <translation>Lokale Adresse</translation>
    </message>
    <message>
        <source>Open bus</source>
        <translation>Geöffneter Bus</translation>
    </message>
    <message>
        <source>No bus open</source>
        <translation>Kein Bus geöffnet</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Opened before:</source>
        <translation>Zuvor geöffnet:</translation>
    </message>
    <message>
        <source>Reopen</source>
        <translation>Wieder öffnen</translation>
    </message>
    <message>
        <source>Discovery</source>
        <translation>Gerätesuche</translation>
    </message>
    <message>
        <source>Discover devices</source>
        <translation>Geräte suchen</translation>
    </message>
    <message>
        <source>Reading labels: %1 of %2</source>
        <translation>Namen werden gelesen: %1 von %2</translation>
    </message>
    <message>
        <source>Labels read: %1, not answered: %2</source>
        <translation>Namen gelesen: %1, ohne Antwort: %2</translation>
    </message>
    <message>
        <source>Labels read: %1</source>
        <translation>Namen gelesen: %1</translation>
    </message>
    <message>
        <source>Searching… %1 devices listed</source>
        <translation>Suche läuft … %1 Geräte gelistet</translation>
    </message>
    <message>
        <source>No discovery yet</source>
        <translation>Noch keine Suche</translation>
    </message>
    <message>
        <source>%1 found: %2 new, %3 already known, %4 missing</source>
        <translation>%1 gefunden: %2 neu, %3 schon bekannt, %4 fehlen</translation>
    </message>
    <message>
        <source>Not a node number: %1</source>
        <translation>Keine Knotennummer: %1</translation>
    </message>
    <message>
        <source>Node %1 of that kind is listed already</source>
        <translation>Knoten %1 dieser Art ist schon gelistet</translation>
    </message>
    <message>
        <source>Added node %1</source>
        <translation>Knoten %1 hinzugefügt</translation>
    </message>
    <message>
        <source>Add device</source>
        <translation>Gerät hinzufügen</translation>
    </message>
    <message>
        <source>Node number</source>
        <translation>Knotennummer</translation>
    </message>
    <message>
        <source>standard node</source>
        <translation>Standardknoten</translation>
    </message>
    <message>
        <source>motor</source>
        <translation>Motor</translation>
    </message>
    <message>
        <source>DC motor</source>
        <translation>Gleichstrommotor</translation>
    </message>
    <message>
        <source>setting tool</source>
        <translation>Einstellwerkzeug</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
</context>
<context>
    <name>DevicePanel</name>
    <message>
        <source>Not read yet</source>
        <translation>Noch nicht gelesen</translation>
    </message>
    <message>
        <source>Changes not written (%1)</source>
        <translation>Änderungen nicht geschrieben (%1)</translation>
    </message>
    <message>
        <source>In step with the device</source>
        <translation>Mit dem Gerät abgeglichen</translation>
    </message>
    <message>
        <source>%1 …</source>
        <translation>%1 …</translation>
    </message>
    <message>
        <source>%1 on %2 devices</source>
        <translation>%1 auf %2 Geräten</translation>
    </message>
    <message>
        <source>%1: %2 done, %3 failed</source>
        <translation>%1: %2 erledigt, %3 fehlgeschlagen</translation>
    </message>
    <message>
        <source>Move up</source>
        <translation>Auffahren</translation>
    </message>
    <message>
        <source>Move down</source>
        <translation>Abfahren</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Move to %1 %</source>
        <translation>Auf %1 % fahren</translation>
    </message>
    <message>
        <source>Select a device in the list.</source>
        <translation>Wählen Sie ein Gerät in der Liste.</translation>
    </message>
    <message>
        <source>%1 devices selected (%2)</source>
        <translation>%1 Geräte ausgewählt (%2)</translation>
    </message>
    <message>
        <source>The changes you make are written to all of them; the values read are those of %1, the current row.</source>
        <translation>Ihre Änderungen werden in alle geschrieben; die gelesenen Werte sind die von %1, der aktuellen Zeile.</translation>
    </message>
    <message>
        <source>Read again</source>
        <translation>Neu lesen</translation>
    </message>
    <message>
        <source>Reads every value shown from the device (F5)</source>
        <translation>Liest alle angezeigten Werte aus dem Gerät (F5)</translation>
    </message>
    <message>
        <source>Write changes to all (%1)</source>
        <translation>Änderungen in alle schreiben (%1)</translation>
    </message>
    <message>
        <source>Write changes (%1)</source>
        <translation>Änderungen schreiben (%1)</translation>
    </message>
    <message>
        <source>Correct the fields marked in red first</source>
        <translation>Korrigieren Sie zuerst die rot markierten Felder</translation>
    </message>
    <message>
        <source>Undo edits</source>
        <translation>Eingaben verwerfen</translation>
    </message>
    <message>
        <source>Write to %1 devices?</source>
        <translation>In %1 Geräte schreiben?</translation>
    </message>
    <message>
        <source>Node</source>
        <translation>Knoten</translation>
    </message>
    <message>
        <source>Field</source>
        <translation>Feld</translation>
    </message>
    <message>
        <source>Current row has</source>
        <translation>Aktuelle Zeile hat</translation>
    </message>
    <message>
        <source>Device has</source>
        <translation>Gerät hat</translation>
    </message>
    <message>
        <source>Wanted</source>
        <translation>Gewünscht</translation>
    </message>
    <message>
        <source>Label</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>no label</source>
        <translation>kein Name</translation>
    </message>
    <message>
        <source>Groups (hex)</source>
        <translation>Gruppen (hex)</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>e.g. 1A, F0001</source>
        <translation>z. B. 1A, F0001</translation>
    </message>
    <message>
        <source>Firmware</source>
        <translation>Firmware</translation>
    </message>
    <message>
        <source>Serial number</source>
        <translation>Seriennummer</translation>
    </message>
    <message>
        <source>Motor</source>
        <translation>Motor</translation>
    </message>
    <message>
        <source>Direction</source>
        <translation>Drehrichtung</translation>
    </message>
    <message>
        <source>reversed</source>
        <translation>umgekehrt</translation>
    </message>
    <message>
        <source>standard</source>
        <translation>normal</translation>
    </message>
    <message>
        <source>Up end limit</source>
        <translation>Obere Endlage</translation>
    </message>
    <message>
        <source>%1 pulses</source>
        <translation>%1 Impulse</translation>
    </message>
    <message>
        <source>Down end limit</source>
        <translation>Untere Endlage</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Position</translation>
    </message>
    <message>
        <source>%1 % (%2 pulses)</source>
        <translation>%1 % (%2 Impulse)</translation>
    </message>
    <message>
        <source>moving…</source>
        <translation>fährt …</translation>
    </message>
    <message>
        <source>Up</source>
        <translation>Auf</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Ab</translation>
    </message>
    <message>
        <source>Go to %</source>
        <translation>Auf % fahren</translation>
    </message>
    <message>
        <source>Wink</source>
        <translation>Zwinkern</translation>
    </message>
    <message>
        <source>Intermediate positions</source>
        <translation>Zwischenpositionen</translation>
    </message>
    <message>
        <source>not read</source>
        <translation>nicht gelesen</translation>
    </message>
    <message>
        <source>%1: %2 % (%3 pulses)</source>
        <translation>%1: %2 % (%3 Impulse)</translation>
    </message>
    <message>
        <source>Position number</source>
        <translation>Position Nummer</translation>
    </message>
    <message>
        <source>at</source>
        <translation>bei</translation>
    </message>
    <message>
        <source>Set</source>
        <translation>Setzen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Speeds and ramps</source>
        <translation>Geschwindigkeiten und Rampen</translation>
    </message>
    <message>
        <source>Up speed</source>
        <translation>Geschwindigkeit auf</translation>
    </message>
    <message>
        <source>%1 rpm</source>
        <translation>%1 U/min</translation>
    </message>
    <message>
        <source>Down speed</source>
        <translation>Geschwindigkeit ab</translation>
    </message>
    <message>
        <source>Slow speed</source>
        <translation>Langsame Geschwindigkeit</translation>
    </message>
    <message>
        <source>Soft start</source>
        <translation>Sanftanlauf</translation>
    </message>
    <message>
        <source>on, %1</source>
        <translation>ein, %1</translation>
    </message>
    <message>
        <source>off</source>
        <translation>aus</translation>
    </message>
    <message>
        <source>Soft stop</source>
        <translation>Sanftstopp</translation>
    </message>
    <message>
        <source>Jobs</source>
        <translation>Aufträge</translation>
    </message>
    <message>
        <source>Reading from the device…</source>
        <translation>Wird aus dem Gerät gelesen …</translation>
    </message>
    <message>
        <source>A setting tool carries settings to the nodes and answers no request over the bus: there is nothing to read from it or write to it.</source>
        <translation>Ein Einstellwerkzeug überträgt Einstellungen zu den Knoten und beantwortet keine Anfrage über den Bus: es gibt nichts von ihm zu lesen oder an es zu schreiben.</translation>
    </message>
    <message>
        <source>left out, rows invalid: %1</source>
        <translation>ausgelassen, ungültige Zeilen: %1</translation>
    </message>
    <message>
        <source>%1 devices selected, of different kinds</source>
        <translation>%1 Geräte ausgewählt, verschiedener Arten</translation>
    </message>
</context>
<context>
    <name>DevicesView</name>
    <message>
        <source>Node</source>
        <translation>Knoten</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Label</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Serial number</source>
        <translation>Seriennummer</translation>
    </message>
    <message>
        <source>Clash</source>
        <translation>Konflikt</translation>
    </message>
    <message>
        <source>Read again</source>
        <translation>Neu lesen</translation>
    </message>
    <message>
        <source>Wink</source>
        <translation>Zwinkern</translation>
    </message>
    <message>
        <source>Network statistics and counters…</source>
        <translation>Netzstatistik und Zähler …</translation>
    </message>
    <message>
        <source>Firmware…</source>
        <translation>Firmware …</translation>
    </message>
    <message>
        <source>Select all</source>
        <translation>Alle auswählen</translation>
    </message>
    <message>
        <source>Select all of this kind</source>
        <translation>Alle dieser Art auswählen</translation>
    </message>
    <message>
        <source>Select none</source>
        <translation>Auswahl aufheben</translation>
    </message>
    <message>
        <source>Remove from the list (%1)</source>
        <translation>Aus der Liste entfernen (%1)</translation>
    </message>
    <message>
        <source>Remove from the list: %1 devices?</source>
        <translation>%1 Geräte aus der Liste entfernen?</translation>
    </message>
    <message>
        <source>The devices themselves are not changed; a discovery lists them again.</source>
        <translation>Die Geräte selbst bleiben unverändert; eine Suche listet sie wieder.</translation>
    </message>
    <message>
        <source>Search label, node number or serial number (Ctrl+F)</source>
        <translation>Name, Knotennummer oder Seriennummer suchen (Strg+F)</translation>
    </message>
    <message>
        <source>Kinds (%1)</source>
        <translation>Arten (%1)</translation>
    </message>
    <message>
        <source>All kinds</source>
        <translation>Alle Arten</translation>
    </message>
    <message>
        <source>Every kind</source>
        <translation>Jede Art</translation>
    </message>
    <message>
        <source>All groups</source>
        <translation>Alle Gruppen</translation>
    </message>
    <message>
        <source>Group %1</source>
        <translation>Gruppe %1</translation>
    </message>
    <message>
        <source>%1 devices match, %2 selected</source>
        <translation>%1 Geräte passen, %2 ausgewählt</translation>
    </message>
    <message>
        <source>%1 devices, %2 selected</source>
        <translation>%1 Geräte, %2 ausgewählt</translation>
    </message>
    <message>
        <source>Select…</source>
        <translation>Auswählen …</translation>
    </message>
    <message>
        <source>All listed (Ctrl+A)</source>
        <translation>Alle gelisteten (Strg+A)</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>Every %1</source>
        <translation>Jeden %1</translation>
    </message>
    <message>
        <source>Sort by this column; again to reverse</source>
        <translation>Nach dieser Spalte sortieren; erneut zum Umkehren</translation>
    </message>
    <message>
        <source>%1 devices answer on node number %2. The bus cannot tell them apart: their answers may mix and a write may reach the wrong one. Give one of them another node number.</source>
        <translation>%1 Geräte antworten auf die Knotennummer %2. Der Bus kann sie nicht unterscheiden: ihre Antworten können sich mischen, und ein Schreibvorgang kann das falsche erreichen. Geben Sie einem von ihnen eine andere Knotennummer.</translation>
    </message>
    <message>
        <source>invalid</source>
        <translation>ungültig</translation>
    </message>
    <message>
        <source>Invalid row, %1. No job is sent to it: forget it and discover the devices again.</source>
        <translation>Ungültige Zeile, %1. Kein Auftrag wird an sie gesendet: entfernen Sie sie und suchen Sie die Geräte erneut.</translation>
    </message>
    <message>
        <source>No device matches the search or filter.</source>
        <translation>Kein Gerät passt zur Suche oder zum Filter.</translation>
    </message>
    <message>
        <source>No device listed yet: open a bus and discover its devices.</source>
        <translation>Noch kein Gerät gelistet: Öffnen Sie einen Bus und suchen Sie seine Geräte.</translation>
    </message>
</context>
<context>
    <name>DiagnosticsChart</name>
    <message>
        <source>Chart of</source>
        <translation>Diagramm von</translation>
    </message>
    <message>
        <source>no device has a value of it yet</source>
        <translation>noch kein Gerät hat dafür einen Wert</translation>
    </message>
</context>
<context>
    <name>DiagnosticsView</name>
    <message>
        <source>Traffic</source>
        <translation>Verkehr</translation>
    </message>
    <message>
        <source>Frames sent</source>
        <translation>Gesendete Rahmen</translation>
    </message>
    <message>
        <source>frames</source>
        <translation>Rahmen</translation>
    </message>
    <message>
        <source>Frames received</source>
        <translation>Empfangene Rahmen</translation>
    </message>
    <message>
        <source>Frames seen</source>
        <translation>Gesehene Rahmen</translation>
    </message>
    <message>
        <source>Bus busy</source>
        <translation>Bus belegt</translation>
    </message>
    <message>
        <source>times</source>
        <translation>mal</translation>
    </message>
    <message>
        <source>Most retries</source>
        <translation>Meiste Wiederholungen</translation>
    </message>
    <message>
        <source>retries</source>
        <translation>Wiederholungen</translation>
    </message>
    <message>
        <source>Highest slot</source>
        <translation>Höchster Slot</translation>
    </message>
    <message>
        <source>Supervision failures</source>
        <translation>Überwachungsfehler</translation>
    </message>
    <message>
        <source>Errors</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Send failures</source>
        <translation>Sendefehler</translation>
    </message>
    <message>
        <source>Collisions</source>
        <translation>Kollisionen</translation>
    </message>
    <message>
        <source>Receive errors</source>
        <translation>Empfangsfehler</translation>
    </message>
    <message>
        <source>Unknown messages</source>
        <translation>Unbekannte Nachrichten</translation>
    </message>
    <message>
        <source>Wrong lengths</source>
        <translation>Falsche Längen</translation>
    </message>
    <message>
        <source>Checksum errors</source>
        <translation>Prüfsummenfehler</translation>
    </message>
    <message>
        <source>Receive buffer full</source>
        <translation>Empfangspuffer voll</translation>
    </message>
    <message>
        <source>Send buffer full</source>
        <translation>Sendepuffer voll</translation>
    </message>
    <message>
        <source>Bundle size errors</source>
        <translation>Bündelgrößenfehler</translation>
    </message>
    <message>
        <source>Motor life</source>
        <translation>Motorleben</translation>
    </message>
    <message>
        <source>Moves</source>
        <translation>Fahrten</translation>
    </message>
    <message>
        <source>moves</source>
        <translation>Fahrten</translation>
    </message>
    <message>
        <source>Revolutions</source>
        <translation>Umdrehungen</translation>
    </message>
    <message>
        <source>turns</source>
        <translation>Umdrehungen</translation>
    </message>
    <message>
        <source>Thermal trips</source>
        <translation>Thermoabschaltungen</translation>
    </message>
    <message>
        <source>Moves after a thermal trip</source>
        <translation>Fahrten nach Thermoabschaltung</translation>
    </message>
    <message>
        <source>Obstacles</source>
        <translation>Hindernisse</translation>
    </message>
    <message>
        <source>Moves after an obstacle</source>
        <translation>Fahrten nach Hindernis</translation>
    </message>
    <message>
        <source>Power cuts</source>
        <translation>Stromausfälle</translation>
    </message>
    <message>
        <source>Restarts</source>
        <translation>Neustarts</translation>
    </message>
    <message>
        <source>Encoder errors</source>
        <translation>Geberfehler</translation>
    </message>
    <message>
        <source>not read</source>
        <translation>nicht gelesen</translation>
    </message>
    <message>
        <source>Traffic counters</source>
        <translation>Verkehrszähler</translation>
    </message>
    <message>
        <source>frames sent, received and seen, bus busy, most retries, highest slot, supervision failures</source>
        <translation>gesendete, empfangene und gesehene Rahmen, Bus belegt, meiste Wiederholungen, höchster Slot, Überwachungsfehler</translation>
    </message>
    <message>
        <source>Error counters</source>
        <translation>Fehlerzähler</translation>
    </message>
    <message>
        <source>send failures, collisions, receive errors, unknown messages, wrong lengths, checksum errors, full buffers, bundle size errors</source>
        <translation>Sendefehler, Kollisionen, Empfangsfehler, unbekannte Nachrichten, falsche Längen, Prüfsummenfehler, volle Puffer, Bündelgrößenfehler</translation>
    </message>
    <message>
        <source>All network counters</source>
        <translation>Alle Netzzähler</translation>
    </message>
    <message>
        <source>every traffic and error counter</source>
        <translation>alle Verkehrs- und Fehlerzähler</translation>
    </message>
    <message>
        <source>Reset the statistics of %1 devices?</source>
        <translation>Statistik von %1 Geräten zurücksetzen?</translation>
    </message>
    <message>
        <source>Clears on each selected device: %1.</source>
        <translation>Löscht auf jedem ausgewählten Gerät: %1.</translation>
    </message>
    <message>
        <source>The motors&apos; life counters (moves, thermal trips, power cuts…) cannot be cleared and stay.</source>
        <translation>Die Lebenszähler der Motoren (Fahrten, Thermoabschaltungen, Stromausfälle …) lassen sich nicht löschen und bleiben erhalten.</translation>
    </message>
    <message>
        <source>Devices selected: %1</source>
        <translation>Ausgewählte Geräte: %1</translation>
    </message>
    <message>
        <source>Read (F5)</source>
        <translation>Lesen (F5)</translation>
    </message>
    <message>
        <source>Reset…</source>
        <translation>Zurücksetzen …</translation>
    </message>
    <message>
        <source>Clears %1 on the selected devices</source>
        <translation>Löscht %1 auf den ausgewählten Geräten</translation>
    </message>
    <message>
        <source>Device</source>
        <translation>Gerät</translation>
    </message>
    <message>
        <source>Sort by %1 and show it in the chart</source>
        <translation>Nach „%1“ sortieren und im Diagramm zeigen</translation>
    </message>
    <message>
        <source>not a motor</source>
        <translation>kein Motor</translation>
    </message>
    <message>
        <source>Select devices in the device list, then read their counters.</source>
        <translation>Wählen Sie Geräte in der Geräteliste und lesen Sie dann ihre Zähler.</translation>
    </message>
</context>
<context>
    <name>FieldRow</name>
    <message>
        <source>Changed here, not written to the device yet</source>
        <translation>Hier geändert, noch nicht ins Gerät geschrieben</translation>
    </message>
</context>
<context>
    <name>FirmwareView</name>
    <message>
        <source>updated to %1</source>
        <translation type="vanished">auf %1 aktualisiert</translation>
    </message>
    <message>
        <source>%1, %2 available</source>
        <translation>%1, %2 verfügbar</translation>
    </message>
    <message>
        <source>%1, up to date</source>
        <translation>%1, aktuell</translation>
    </message>
    <message>
        <source>%1, no package fits</source>
        <translation>%1, kein Paket passt</translation>
    </message>
    <message>
        <source>Packages in %1</source>
        <translation>Pakete in %1</translation>
    </message>
    <message>
        <source>(no folder set)</source>
        <translation>(kein Ordner eingestellt)</translation>
    </message>
    <message>
        <source>Reload</source>
        <translation>Neu laden</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Version</translation>
    </message>
    <message>
        <source>For</source>
        <translation>Für</translation>
    </message>
    <message>
        <source>signature does not verify</source>
        <translation>Signatur ungültig</translation>
    </message>
    <message>
        <source>%1 devices selected</source>
        <translation>%1 Geräte ausgewählt</translation>
    </message>
    <message>
        <source>Check</source>
        <translation>Prüfen</translation>
    </message>
    <message>
        <source>Update</source>
        <translation type="vanished">Aktualisieren</translation>
    </message>
    <message>
        <source>Update through bootloader</source>
        <translation type="vanished">Über den Bootloader aktualisieren</translation>
    </message>
    <message>
        <source>checking the image</source>
        <translation>Abbild wird geprüft</translation>
    </message>
    <message>
        <source>%1/%2 blocks, %3 s left</source>
        <translation>%1/%2 Blöcke, noch %3 s</translation>
    </message>
    <message>
        <source>%1/%2 blocks</source>
        <translation>%1/%2 Blöcke</translation>
    </message>
    <message>
        <source>skipped: %1</source>
        <translation>übersprungen: %1</translation>
    </message>
    <message>
        <source>%1 %2 → %3 in %4 s</source>
        <translation>%1 %2 → %3 in %4 s</translation>
    </message>
    <message>
        <source>recovered</source>
        <translation>wiederhergestellt</translation>
    </message>
    <message>
        <source>updated</source>
        <translation>aktualisiert</translation>
    </message>
    <message>
        <source>bootloader</source>
        <translation>Bootloader</translation>
    </message>
    <message>
        <source>%1 updated, %2 skipped, %3 failed, %4 recovered in %5 s</source>
        <translation>%1 aktualisiert, %2 übersprungen, %3 fehlgeschlagen, %4 wiederhergestellt in %5 s</translation>
    </message>
    <message>
        <source>%1, newer than every package (newest %2)</source>
        <translation>%1, neuer als jedes Paket (neuestes %2)</translation>
    </message>
    <message>
        <source>Update through the bootloader</source>
        <translation>Über den Bootloader aktualisieren</translation>
    </message>
    <message>
        <source>Update firmware</source>
        <translation>Firmware aktualisieren</translation>
    </message>
    <message>
        <source>Send the newest package that fits to %1 device(s), one after another?</source>
        <translation>Das neueste passende Paket nacheinander an %1 Gerät(e) senden?</translation>
    </message>
    <message>
        <source>Devices that already run its version get it again.</source>
        <translation>Geräte, die diese Version schon haben, erhalten sie erneut.</translation>
    </message>
    <message>
        <source>Devices with a newer version get the older one.</source>
        <translation>Geräte mit neuerer Version erhalten die ältere.</translation>
    </message>
    <message>
        <source>Update…</source>
        <translation>Aktualisieren …</translation>
    </message>
    <message>
        <source>Update through bootloader…</source>
        <translation>Über den Bootloader aktualisieren …</translation>
    </message>
    <message>
        <source>Also devices that run the package&apos;s version</source>
        <translation>Auch Geräte, die die Version des Pakets haben</translation>
    </message>
    <message>
        <source>Allow an older version</source>
        <translation>Ältere Version erlauben</translation>
    </message>
</context>
<context>
    <name>Format</name>
    <message>
        <source>not read</source>
        <translation>nicht gelesen</translation>
    </message>
    <message>
        <source>Too long: %1 bytes, a label holds %2</source>
        <translation>Zu lang: %1 Bytes, ein Name fasst %2</translation>
    </message>
    <message>
        <source>(empty)</source>
        <translation>(leer)</translation>
    </message>
    <message>
        <source>Not a group address (1 to FFFFFF): %1</source>
        <translation>Keine Gruppenadresse (1 bis FFFFFF): %1</translation>
    </message>
    <message>
        <source>Given twice: %1</source>
        <translation>Doppelt angegeben: %1</translation>
    </message>
    <message>
        <source>%1 groups; a device holds %2</source>
        <translation>%1 Gruppen; ein Gerät fasst %2</translation>
    </message>
    <message>
        <source>standard node</source>
        <translation>Standardknoten</translation>
    </message>
    <message>
        <source>motor</source>
        <translation>Motor</translation>
    </message>
    <message>
        <source>DC motor</source>
        <translation>Gleichstrommotor</translation>
    </message>
    <message>
        <source>setting tool</source>
        <translation>Einstellwerkzeug</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>Read label</source>
        <translation>Name lesen</translation>
    </message>
    <message>
        <source>Write label</source>
        <translation>Name schreiben</translation>
    </message>
    <message>
        <source>Read serial number</source>
        <translation>Seriennummer lesen</translation>
    </message>
    <message>
        <source>Read groups</source>
        <translation>Gruppen lesen</translation>
    </message>
    <message>
        <source>Write groups</source>
        <translation>Gruppen schreiben</translation>
    </message>
    <message>
        <source>Read firmware version</source>
        <translation>Firmwareversion lesen</translation>
    </message>
    <message>
        <source>Wink</source>
        <translation>Zwinkern</translation>
    </message>
    <message>
        <source>Move</source>
        <translation>Fahren</translation>
    </message>
    <message>
        <source>Read direction</source>
        <translation>Drehrichtung lesen</translation>
    </message>
    <message>
        <source>Write direction</source>
        <translation>Drehrichtung schreiben</translation>
    </message>
    <message>
        <source>Read end limits</source>
        <translation>Endlagen lesen</translation>
    </message>
    <message>
        <source>Write end limit</source>
        <translation>Endlage schreiben</translation>
    </message>
    <message>
        <source>Read position</source>
        <translation>Position lesen</translation>
    </message>
    <message>
        <source>Read intermediate positions</source>
        <translation>Zwischenpositionen lesen</translation>
    </message>
    <message>
        <source>Write intermediate position</source>
        <translation>Zwischenposition schreiben</translation>
    </message>
    <message>
        <source>Read speeds</source>
        <translation>Geschwindigkeiten lesen</translation>
    </message>
    <message>
        <source>Write speeds</source>
        <translation>Geschwindigkeiten schreiben</translation>
    </message>
    <message>
        <source>Read ramps</source>
        <translation>Rampen lesen</translation>
    </message>
    <message>
        <source>Write ramps</source>
        <translation>Rampen schreiben</translation>
    </message>
    <message>
        <source>Restore factory settings</source>
        <translation>Werkseinstellungen wiederherstellen</translation>
    </message>
    <message>
        <source>Read life counters</source>
        <translation>Lebenszähler lesen</translation>
    </message>
    <message>
        <source>Read network statistics</source>
        <translation>Netzstatistik lesen</translation>
    </message>
    <message>
        <source>Reset network statistics</source>
        <translation>Netzstatistik zurücksetzen</translation>
    </message>
    <message>
        <source>Check firmware</source>
        <translation>Firmware prüfen</translation>
    </message>
    <message>
        <source>Update firmware</source>
        <translation>Firmware aktualisieren</translation>
    </message>
    <message>
        <source>Update firmware through the bootloader</source>
        <translation>Firmware über den Bootloader aktualisieren</translation>
    </message>
    <message>
        <source>Discovery</source>
        <translation>Gerätesuche</translation>
    </message>
    <message>
        <source>Job</source>
        <translation>Auftrag</translation>
    </message>
    <message>
        <source>not a motor</source>
        <translation>kein Motor</translation>
    </message>
    <message>
        <source>not a DC motor</source>
        <translation>kein Gleichstrommotor</translation>
    </message>
    <message>
        <source>the device is no longer listed</source>
        <translation>das Gerät ist nicht mehr gelistet</translation>
    </message>
    <message>
        <source>this kind of device cannot do that</source>
        <translation>diese Geräteart kann das nicht</translation>
    </message>
    <message>
        <source>no label</source>
        <translation>kein Name</translation>
    </message>
    <message>
        <source>no group</source>
        <translation>keine Gruppe</translation>
    </message>
    <message>
        <source>groups %1</source>
        <translation>Gruppen %1</translation>
    </message>
    <message>
        <source>version %1</source>
        <translation>Version %1</translation>
    </message>
    <message>
        <source>reversed</source>
        <translation>umgekehrt</translation>
    </message>
    <message>
        <source>standard</source>
        <translation>normal</translation>
    </message>
    <message>
        <source>up %1, down %2 pulses</source>
        <translation>oben %1, unten %2 Impulse</translation>
    </message>
    <message>
        <source>%1 % (%2 pulses)</source>
        <translation>%1 % (%2 Impulse)</translation>
    </message>
    <message>
        <source>%1 set</source>
        <translation>%1 gesetzt</translation>
    </message>
    <message>
        <source>up %1, down %2, slow %3 rpm</source>
        <translation>auf %1, ab %2, langsam %3 U/min</translation>
    </message>
    <message>
        <source>start %1, stop %2</source>
        <translation>Anlauf %1, Stopp %2</translation>
    </message>
    <message>
        <source>off</source>
        <translation>aus</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>done</source>
        <translation>erledigt</translation>
    </message>
    <message>
        <source>tool</source>
        <translation>Werkzeug</translation>
    </message>
    <message>
        <source>keypad</source>
        <translation>Tastenfeld</translation>
    </message>
    <message>
        <source>sensor</source>
        <translation>Sensor</translation>
    </message>
    <message>
        <source>interface</source>
        <translation>Schnittstelle</translation>
    </message>
    <message>
        <source>motor input/output</source>
        <translation>Motor-Ein-/Ausgang</translation>
    </message>
</context>
<context>
    <name>HealthChart</name>
    <message>
        <source>minutes</source>
        <translation>Minuten</translation>
    </message>
    <message>
        <source>per second</source>
        <translation>pro Sekunde</translation>
    </message>
    <message>
        <source>Frames</source>
        <translation>Rahmen</translation>
    </message>
    <message>
        <source>Errors</source>
        <translation>Fehler</translation>
    </message>
</context>
<context>
    <name>HealthView</name>
    <message>
        <source>Node</source>
        <translation>Knoten</translation>
    </message>
    <message>
        <source>Requests</source>
        <translation>Anfragen</translation>
    </message>
    <message>
        <source>Replies</source>
        <translation>Antworten</translation>
    </message>
    <message>
        <source>Repeated</source>
        <translation>Wiederholt</translation>
    </message>
    <message>
        <source>No answer</source>
        <translation>Ohne Antwort</translation>
    </message>
    <message>
        <source>Invalid frames</source>
        <translation>Ungültige Rahmen</translation>
    </message>
    <message>
        <source>Median reply</source>
        <translation>Antwort (Median)</translation>
    </message>
    <message>
        <source>ms</source>
        <translation>ms</translation>
    </message>
    <message>
        <source>Slowest 5 %</source>
        <translation>Langsamste 5 %</translation>
    </message>
    <message>
        <source>Gone wrong</source>
        <translation>Fehlgeschlagen</translation>
    </message>
    <message>
        <source>no reply</source>
        <translation>keine Antwort</translation>
    </message>
    <message>
        <source>Nodes heard on the open bus: %1</source>
        <translation>Knoten am geöffneten Bus: %1</translation>
    </message>
    <message>
        <source>No bus open</source>
        <translation>Kein Bus geöffnet</translation>
    </message>
    <message>
        <source>Start counting anew</source>
        <translation>Neu zählen</translation>
    </message>
    <message>
        <source>No frames counted yet: the table fills as the devices are asked.</source>
        <translation>Noch keine Rahmen gezählt: die Tabelle füllt sich, sobald Geräte gefragt werden.</translation>
    </message>
</context>
<context>
    <name>HistoryPanel</name>
    <message>
        <source>Since</source>
        <translation>Seit</translation>
    </message>
    <message>
        <source>2026-05-04T10:00:00Z (empty: everything)</source>
        <translation>2026-05-04T10:00:00Z (leer: alles)</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>Aktualisieren</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Tool</source>
        <translation>Werkzeug</translation>
    </message>
    <message>
        <source>Device</source>
        <translation>Gerät</translation>
    </message>
    <message>
        <source>Field</source>
        <translation>Feld</translation>
    </message>
    <message>
        <source>Old</source>
        <translation>Alt</translation>
    </message>
    <message>
        <source>New</source>
        <translation>Neu</translation>
    </message>
    <message>
        <source>Outcome</source>
        <translation>Ergebnis</translation>
    </message>
</context>
<context>
    <name>Jobs</name>
    <message>
        <source>the device is no longer listed</source>
        <translation>das Gerät ist nicht mehr gelistet</translation>
    </message>
    <message>
        <source>not sent, the row is invalid: %1</source>
        <translation>nicht gesendet, die Zeile ist ungültig: %1</translation>
    </message>
    <message>
        <source>its node number is 0, which no device has</source>
        <translation>ihre Knotennummer ist 0, die kein Gerät hat</translation>
    </message>
    <message>
        <source>its node number FFFFFF is the broadcast address, a job on it would reach every device</source>
        <translation>ihre Knotennummer FFFFFF ist die Rundrufadresse, ein Auftrag an sie würde jedes Gerät erreichen</translation>
    </message>
    <message>
        <source>its node number belongs to configuration tools, never to a device</source>
        <translation>ihre Knotennummer gehört Konfigurationswerkzeugen, nie einem Gerät</translation>
    </message>
    <message>
        <source>its node type 0 belongs to configuration tools, never to a device</source>
        <translation>ihr Knotentyp 0 gehört Konfigurationswerkzeugen, nie einem Gerät</translation>
    </message>
    <message>
        <source>its node type is reserved, no device has it</source>
        <translation>ihr Knotentyp ist reserviert, kein Gerät hat ihn</translation>
    </message>
</context>
<context>
    <name>ReplaceDeviceDialog</name>
    <message>
        <source>Replace device</source>
        <translation>Gerät ersetzen</translation>
    </message>
    <message>
        <source>Old device (document)</source>
        <translation>Altes Gerät (Dokument)</translation>
    </message>
    <message>
        <source>New device (bus)</source>
        <translation>Neues Gerät (Bus)</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>%1 field(s) will be written</source>
        <translation>%1 Feld(er) werden geschrieben</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>Ersetzen</translation>
    </message>
</context>
<context>
    <name>TrafficView</name>
    <message>
        <source>Node (hex)</source>
        <translation>Knoten (hex)</translation>
    </message>
    <message>
        <source>all</source>
        <translation>alle</translation>
    </message>
    <message>
        <source>Command (hex)</source>
        <translation>Befehl (hex)</translation>
    </message>
    <message>
        <source>%1 frames</source>
        <translation>%1 Rahmen</translation>
    </message>
    <message>
        <source>Follow</source>
        <translation>Folgen</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Dir</source>
        <translation type="vanished">Richtung</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Quelle</translation>
    </message>
    <message>
        <source>Destination</source>
        <translation>Ziel</translation>
    </message>
    <message>
        <source>Command</source>
        <translation>Befehl</translation>
    </message>
    <message>
        <source>Payload</source>
        <translation>Nutzdaten</translation>
    </message>
    <message>
        <source>Direction</source>
        <translation>Richtung</translation>
    </message>
    <message>
        <source>sent</source>
        <translation>gesendet</translation>
    </message>
    <message>
        <source>received</source>
        <translation>empfangen</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>VRN configuration tool</source>
        <translation>VRN-Konfigurationswerkzeug</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Messages…</source>
        <translation>&amp;Meldungen …</translation>
    </message>
    <message>
        <source>&amp;Quit (Ctrl+Q)</source>
        <translation>&amp;Beenden (Strg+Q)</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>Connection</source>
        <translation>Verbindung</translation>
    </message>
    <message>
        <source>Devices</source>
        <translation>Geräte</translation>
    </message>
    <message>
        <source>Actions</source>
        <translation>Aktionen</translation>
    </message>
    <message>
        <source>Diagnostics</source>
        <translation>Diagnose</translation>
    </message>
    <message>
        <source>Firmware</source>
        <translation>Firmware</translation>
    </message>
    <message>
        <source>Traffic</source>
        <translation>Verkehr</translation>
    </message>
    <message>
        <source>Theme as the system</source>
        <translation>Design wie das System</translation>
    </message>
    <message>
        <source>Light theme</source>
        <translation>Helles Design</translation>
    </message>
    <message>
        <source>Dark theme</source>
        <translation>Dunkles Design</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;About…</source>
        <translation>&amp;Über …</translation>
    </message>
    <message>
        <source>Devices (%1)</source>
        <translation>Geräte (%1)</translation>
    </message>
    <message>
        <source>Bus: %1</source>
        <translation>Bus: %1</translation>
    </message>
    <message>
        <source>No bus open</source>
        <translation>Kein Bus geöffnet</translation>
    </message>
    <message>
        <source>Messages (%1 ⚠)</source>
        <translation>Meldungen (%1 ⚠)</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>Meldungen</translation>
    </message>
    <message>
        <source>%1 (device %2)</source>
        <translation>%1 (Gerät %2)</translation>
    </message>
    <message>
        <source>Also written to %1</source>
        <translation>Auch geschrieben nach %1</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>About the VRN configuration tool</source>
        <translation>Über das VRN-Konfigurationswerkzeug</translation>
    </message>
    <message>
        <source>Application version %1</source>
        <translation>Anwendungsversion %1</translation>
    </message>
    <message>
        <source>Configuration library version %1</source>
        <translation>Version der Konfigurationsbibliothek %1</translation>
    </message>
    <message>
        <source>Log file: %1</source>
        <translation>Protokolldatei: %1</translation>
    </message>
    <message>
        <source>Configures the motors, standard nodes and setting tools of a VRN network.</source>
        <translation>Konfiguriert die Motoren, Standardknoten und Einstellwerkzeuge eines VRN-Netzes.</translation>
    </message>
    <message>
        <source>Opened %1</source>
        <translation>%1 geöffnet</translation>
    </message>
    <message>
        <source>cannot write the log file %1: %2</source>
        <translation>Protokolldatei %1 kann nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>the QML module VRNConfigTool could not be loaded</source>
        <translation>das QML-Modul VRNConfigTool konnte nicht geladen werden</translation>
    </message>
    <message>
        <source>the main window could not be loaded</source>
        <translation>das Hauptfenster konnte nicht geladen werden</translation>
    </message>
    <message>
        <source>Opens this bus (&quot;serial:PORT&quot; or &quot;mcast:GROUP:PORT:BIND&quot;) instead of the one of the last run.</source>
        <translation>Öffnet diesen Bus („serial:PORT“ oder „mcast:GRUPPE:PORT:ADRESSE“) statt des zuletzt benutzten.</translation>
    </message>
    <message>
        <source>Shows the interface in this language (&quot;de&quot;, &quot;en&quot;) instead of the system&apos;s.</source>
        <translation>Zeigt die Oberfläche in dieser Sprache („de“, „en“) statt der des Systems.</translation>
    </message>
    <message>
        <source>Also writes the library&apos;s traces to the log file and every message to the terminal.</source>
        <translation>Schreibt auch die Ablaufspuren der Bibliothek in die Protokolldatei und jede Meldung auf das Terminal.</translation>
    </message>
    <message>
        <source>Writes the log to this file instead of %1.</source>
        <translation>Schreibt das Protokoll in diese Datei statt nach %1.</translation>
    </message>
    <message>
        <source>Configures the devices of a VRN network.</source>
        <translation>Konfiguriert die Geräte eines VRN-Netzes.</translation>
    </message>
    <message>
        <source>vrnconfigtool: unexpected argument %1</source>
        <translation>vrnconfigtool: unerwartetes Argument %1</translation>
    </message>
    <message>
        <source>Backup &amp;&amp; Compare</source>
        <translation>Sichern &amp;&amp; Vergleichen</translation>
    </message>
    <message>
        <source>History</source>
        <translation>Verlauf</translation>
    </message>
    <message>
        <source>Health</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>Stop all: %1</source>
        <translation>Alle stoppen: %1</translation>
    </message>
    <message>
        <source>Stop sent to every motor</source>
        <translation>Stopp an alle Motoren gesendet</translation>
    </message>
    <message>
        <source>Stop all motors (Esc)</source>
        <translation>Alle Motoren stoppen (Esc)</translation>
    </message>
    <message>
        <source>Registry: %1%2</source>
        <translation>Register: %1%2</translation>
    </message>
    <message>
        <source> (read-only)</source>
        <translation> (nur lesen)</translation>
    </message>
    <message>
        <source>Registry: in memory</source>
        <translation>Register: im Speicher</translation>
    </message>
    <message>
        <source>Device registry of this bus, read-only: %1</source>
        <translation>Geräteregister dieses Busses, schreibgeschützt: %1</translation>
    </message>
    <message>
        <source>Device registry of this bus: %1</source>
        <translation>Geräteregister dieses Busses: %1</translation>
    </message>
</context>
</TS>

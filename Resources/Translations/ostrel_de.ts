<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>FormatText</name>
    <message>
        <source>%1 bytes</source>
        <translation>%1 Byte</translation>
    </message>
    <message>
        <source>%1 kB</source>
        <translation>%1 kB</translation>
    </message>
    <message>
        <source>%1 MB</source>
        <translation>%1 MB</translation>
    </message>
    <message>
        <source>%1 GB</source>
        <translation>%1 GB</translation>
    </message>
    <message>
        <source>%1 MHz</source>
        <translation>%1 MHz</translation>
    </message>
    <message>
        <source>%1 GHz</source>
        <translation>%1 GHz</translation>
    </message>
</context>
<context>
    <name>Ostrel</name>
    <message>
        <source>%1 bytes</source>
        <translation>%1 Byte</translation>
    </message>
    <message>
        <source>no result came for the message to %1</source>
        <translation>für die Nachricht an %1 kam kein Ergebnis</translation>
    </message>
    <message>
        <source>listening as %1 on the bus %2</source>
        <translation>höre als %1 auf dem Bus %2 zu</translation>
    </message>
    <message>
        <source>%1 has not come</source>
        <translation>%1 ist nicht gekommen</translation>
    </message>
    <message>
        <source>%1 could not join the bus %2 within %3 s: the name is taken or the server does not answer</source>
        <translation>%1 konnte dem Bus %2 nicht in %3 s beitreten: Der Name ist vergeben, oder der Server antwortet nicht</translation>
    </message>
    <message>
        <source>nobody serves the bus %1</source>
        <translation>niemand bedient den Bus %1</translation>
    </message>
    <message>
        <source>the name %1 is taken on the bus %2</source>
        <translation>der Name %1 ist auf dem Bus %2 vergeben</translation>
    </message>
    <message>
        <source>the server of the bus %1 has gone</source>
        <translation>der Server des Busses %1 ist fort</translation>
    </message>
    <message>
        <source>a process that cannot be seen from here</source>
        <translation>einem Prozess, der von hier nicht zu sehen ist</translation>
    </message>
    <message>
        <source>process %1</source>
        <translation>Prozess %1</translation>
    </message>
    <message>
        <source>%1 (process %2)</source>
        <translation>%1 (Prozess %2)</translation>
    </message>
    <message>
        <source>The bus %1 is served by %2. Its members: %3.</source>
        <translation>Der Bus %1 wird von %2 bedient. Seine Mitglieder: %3.</translation>
    </message>
    <message>
        <source>The system refuses the connection to the bus %1 at %2: %3.</source>
        <translation>Das System verweigert die Verbindung zum Bus %1 bei %2: %3.</translation>
    </message>
    <message>
        <source>Nobody serves the bus %1: there is no socket %2.</source>
        <translation>Niemand bedient den Bus %1: Den Socket %2 gibt es nicht.</translation>
    </message>
    <message>
        <source>The name %1 is taken on the bus %2, which is served by %3.</source>
        <translation>Der Name %1 ist auf dem Bus %2 vergeben, den %3 bedient.</translation>
    </message>
    <message>
        <source>The server of the bus %1 does not answer: %2. It may be stopped or busy.</source>
        <translation>Der Server des Busses %1 antwortet nicht: %2. Vielleicht ist er angehalten oder beschäftigt.</translation>
    </message>
    <message>
        <source>A process that is joining the bus %1 keeps all others out: it holds %2.lock. It may be stopped or busy.</source>
        <translation>Ein Prozess, der dem Bus %1 gerade beitritt, hält alle anderen auf: Er hält %2.lock. Vielleicht ist er angehalten oder beschäftigt.</translation>
    </message>
    <message>
        <source>Nobody serves the bus %1: a server that has gone left the socket %2 behind. The next process that may serve clears it away.</source>
        <translation>Niemand bedient den Bus %1: Ein Server, der fort ist, hat den Socket %2 zurückgelassen. Der nächste Prozess, der bedienen darf, räumt ihn weg.</translation>
    </message>
    <message>
        <source>A file that is no socket is where the socket of the bus %1 belongs. Remove it: %2.</source>
        <translation>Wo der Socket des Busses %1 hingehört, liegt eine Datei, die kein Socket ist. Entfernen Sie sie: %2.</translation>
    </message>
    <message>
        <source>A folder is where the socket of the bus %1 belongs. Remove it: %2.</source>
        <translation>Wo der Socket des Busses %1 hingehört, liegt ein Ordner. Entfernen Sie ihn: %2.</translation>
    </message>
    <message>
        <source>A link to %1 is where the socket of the bus %2 belongs. Remove it: %3.</source>
        <translation>Wo der Socket des Busses %2 hingehört, liegt ein Link auf %1. Entfernen Sie ihn: %3.</translation>
    </message>
    <message>
        <source>The socket of the bus %1 belongs to the user with the number %2: %3. Set TMPDIR to a folder of your own.</source>
        <translation>Der Socket des Busses %1 gehört dem Benutzer mit der Nummer %2: %3. Setzen Sie TMPDIR auf einen eigenen Ordner.</translation>
    </message>
    <message>
        <source>The name of the socket of the bus %1 has %2 bytes, and no more than %3 are possible: %4. Set TMPDIR to a folder with a shorter name.</source>
        <translation>Der Name des Sockets des Busses %1 hat %2 Byte, und mehr als %3 sind nicht möglich: %4. Setzen Sie TMPDIR auf einen Ordner mit kürzerem Namen.</translation>
    </message>
    <message>
        <source>The bus %1 is served in another temporary folder, %2, by %3. This process looks in %4. TMPDIR must be the same for both.</source>
        <translation>Der Bus %1 wird in einem anderen temporären Ordner, %2, von %3 bedient. Dieser Prozess sucht in %4. TMPDIR muss für beide gleich sein.</translation>
    </message>
    <message>
        <source>The bus %1 is served by %2, but its socket %3 has been removed: who comes now does not find it. Start that process again.</source>
        <translation>Der Bus %1 wird von %2 bedient, aber sein Socket %3 wurde entfernt: Wer jetzt kommt, findet ihn nicht. Starten Sie diesen Prozess neu.</translation>
    </message>
    <message>
        <source>The temporary folder %1 cannot be used: %2.</source>
        <translation>Der temporäre Ordner %1 ist nicht zu gebrauchen: %2.</translation>
    </message>
    <message>
        <source>%1 listens on the socket of the bus %2 but does not speak its language: %3.</source>
        <translation>%1 hört am Socket des Busses %2 zu, spricht aber nicht dessen Sprache: %3.</translation>
    </message>
    <message>
        <source>Another bus of this name is served in the temporary folder %1 by %2.</source>
        <translation>Ein anderer Bus dieses Namens wird im temporären Ordner %1 von %2 bedient.</translation>
    </message>
    <message>
        <source>cannot write to the standard output: %1</source>
        <translation>die Standardausgabe lässt sich nicht beschreiben: %1</translation>
    </message>
    <message>
        <source>the message is longer than %1 bytes</source>
        <translation>die Nachricht ist länger als %1 Byte</translation>
    </message>
    <message>
        <source>cannot read %1: %2</source>
        <translation>%1 lässt sich nicht lesen: %2</translation>
    </message>
    <message>
        <source>the standard input</source>
        <translation>die Standardeingabe</translation>
    </message>
    <message>
        <source>a line to say is too long</source>
        <translation>eine Zeile, die zu sagen wäre, ist zu lang</translation>
    </message>
    <message>
        <source>cannot say a line that does not begin with a name: %1</source>
        <translation>eine Zeile, die nicht mit einem Namen beginnt, lässt sich nicht sagen: %1</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Mounted at</source>
        <translation>Eingehängt unter</translation>
    </message>
    <message>
        <source>Total</source>
        <translation>Gesamt</translation>
    </message>
    <message>
        <source>Free</source>
        <translation>Frei</translation>
    </message>
    <message>
        <source>Used</source>
        <translation>Belegt</translation>
    </message>
    <message>
        <source>the disk tool diskutil is missing; it comes with macOS and is looked for in PATH</source>
        <translation>das Festplattenwerkzeug diskutil fehlt; es gehört zu macOS und wird in PATH gesucht</translation>
    </message>
    <message>
        <source>diskutil tells of no mounted disk</source>
        <translation>diskutil nennt keine eingehängte Festplatte</translation>
    </message>
    <message>
        <source>there is no %1</source>
        <translation>%1 gibt es nicht</translation>
    </message>
    <message>
        <source>no disk holds %1</source>
        <translation>keine Festplatte enthält %1</translation>
    </message>
    <message>
        <source>not UTF-8: %1</source>
        <translation>kein UTF-8: %1</translation>
    </message>
    <message>
        <source>the path is no text in this locale: %1</source>
        <translation>der Pfad ist in diesem Gebietsschema kein Text: %1</translation>
    </message>
    <message>
        <source>a file</source>
        <translation>eine Datei</translation>
    </message>
    <message>
        <source>a folder</source>
        <translation>ein Ordner</translation>
    </message>
    <message>
        <source>a link</source>
        <translation>ein Link</translation>
    </message>
    <message>
        <source>a link to nothing</source>
        <translation>ein Link ins Leere</translation>
    </message>
    <message>
        <source>neither file nor folder</source>
        <translation>weder Datei noch Ordner</translation>
    </message>
    <message>
        <source>not there</source>
        <translation>nicht vorhanden</translation>
    </message>
    <message>
        <source>the path does not begin with /</source>
        <translation>der Pfad beginnt nicht mit /</translation>
    </message>
    <message>
        <source>a component of the path is &quot;..&quot;</source>
        <translation>ein Teil des Pfads ist &quot;..&quot;</translation>
    </message>
    <message>
        <source>language folders may be removed anywhere</source>
        <translation>Sprachordner dürfen überall entfernt werden</translation>
    </message>
    <message>
        <source>%1 may be cleaned</source>
        <translation>%1 darf bereinigt werden</translation>
    </message>
    <message>
        <source>it is on a writable volume</source>
        <translation>es liegt auf einem beschreibbaren Volume</translation>
    </message>
    <message>
        <source>under /Volumes only what exists may be removed</source>
        <translation>unter /Volumes darf nur entfernt werden, was es gibt</translation>
    </message>
    <message>
        <source>no writable volume holds it</source>
        <translation>kein beschreibbares Volume enthält es</translation>
    </message>
    <message>
        <source>it lies in no folder that may be cleaned</source>
        <translation>es liegt in keinem Ordner, der bereinigt werden darf</translation>
    </message>
    <message>
        <source>what may be removed may be searched</source>
        <translation>was entfernt werden darf, darf durchsucht werden</translation>
    </message>
    <message>
        <source>%1 is a library folder of the system</source>
        <translation>%1 ist ein Library-Ordner des Systems</translation>
    </message>
    <message>
        <source>it may not be removed and is in no library folder</source>
        <translation>es darf nicht entfernt werden und liegt in keinem Library-Ordner</translation>
    </message>
    <message>
        <source>yes</source>
        <translation>ja</translation>
    </message>
    <message>
        <source>no</source>
        <translation>nein</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>What it is</source>
        <translation>Was es ist</translation>
    </message>
    <message>
        <source>Safe to remove</source>
        <translation>Entfernen erlaubt</translation>
    </message>
    <message>
        <source>To be searched</source>
        <translation>Durchsuchen erlaubt</translation>
    </message>
    <message>
        <source>You may read it</source>
        <translation>Sie dürfen es lesen</translation>
    </message>
    <message>
        <source>You may write it</source>
        <translation>Sie dürfen es schreiben</translation>
    </message>
    <message>
        <source>You may remove it</source>
        <translation>Sie dürfen es entfernen</translation>
    </message>
    <message>
        <source>With all inside</source>
        <translation>Mit allem darin</translation>
    </message>
    <message>
        <source>Application</source>
        <translation>Anwendung</translation>
    </message>
    <message>
        <source>Language folder</source>
        <translation>Sprachordner</translation>
    </message>
    <message>
        <source>Disk</source>
        <translation>Festplatte</translation>
    </message>
    <message>
        <source>the system does not tell its memory</source>
        <translation>das System nennt seinen Speicher nicht</translation>
    </message>
    <message>
        <source>Memory</source>
        <translation>Speicher</translation>
    </message>
    <message>
        <source>Cleaning the memory</source>
        <translation>Der Speicher wird bereinigt</translation>
    </message>
    <message>
        <source>the purger cannot be started: %1</source>
        <translation>das Programm zum Bereinigen lässt sich nicht starten: %1</translation>
    </message>
    <message>
        <source>Freed %1.</source>
        <translation>%1 freigegeben.</translation>
    </message>
    <message>
        <source>The time is over; %1 were freed.</source>
        <translation>Die Zeit ist um; %1 wurden freigegeben.</translation>
    </message>
    <message>
        <source>Stopped; %1 were freed.</source>
        <translation>Angehalten; %1 wurden freigegeben.</translation>
    </message>
    <message>
        <source>on, true, yes, 1, or off, false, no, 0</source>
        <translation>on, true, yes, 1 oder off, false, no, 0</translation>
    </message>
    <message>
        <source>on</source>
        <translation>an</translation>
    </message>
    <message>
        <source>off</source>
        <translation>aus</translation>
    </message>
    <message>
        <source>bytes, or a size such as &quot;500 MB&quot; or &quot;2 GB&quot;</source>
        <translation>Byte oder eine Größe wie &quot;500 MB&quot; oder &quot;2 GB&quot;</translation>
    </message>
    <message>
        <source>a part of the memory between 0 and 1, such as 0.05, or a percentage such as 5%</source>
        <translation>einen Anteil des Speichers zwischen 0 und 1 wie 0.05 oder einen Prozentsatz wie 5%</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>a date such as 2026-01-31, or none</source>
        <translation>ein Datum wie 2026-01-31 oder none</translation>
    </message>
    <message>
        <source>%1 (no period)</source>
        <translation>%1 (kein Zeitraum)</translation>
    </message>
    <message>
        <source>a path that begins with /</source>
        <translation>einen Pfad, der mit / beginnt</translation>
    </message>
    <message>
        <source>a URL such as https://example.org/help</source>
        <translation>eine URL wie https://example.org/help</translation>
    </message>
    <message>
        <source>there is no setting %1; &quot;settings list&quot; names them</source>
        <translation>eine Einstellung %1 gibt es nicht; &quot;settings list&quot; nennt sie</translation>
    </message>
    <message>
        <source>the settings cannot be written: %1</source>
        <translation>die Einstellungen lassen sich nicht schreiben: %1</translation>
    </message>
    <message>
        <source>No reminder.</source>
        <translation>Keine Erinnerung.</translation>
    </message>
    <message>
        <source>Next reminder: %1, counted from %2.</source>
        <translation>Nächste Erinnerung: %1, gerechnet ab %2.</translation>
    </message>
    <message>
        <source>Setting</source>
        <translation>Einstellung</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>Default</source>
        <translation>Vorgabe</translation>
    </message>
    <message>
        <source>%1 is no value for %2, which takes %3</source>
        <translation>%1 ist kein Wert für %2; möglich ist: %3</translation>
    </message>
    <message>
        <source>name a setting, or all of them with --all</source>
        <translation>nennen Sie eine Einstellung, oder alle mit --all</translation>
    </message>
    <message>
        <source>Set all settings back to their defaults?</source>
        <translation>Alle Einstellungen auf ihre Vorgaben zurücksetzen?</translation>
    </message>
    <message>
        <source>nothing was changed; --yes needs no answer</source>
        <translation>nichts wurde geändert; --yes braucht keine Antwort</translation>
    </message>
    <message>
        <source>a frequency is written like &quot;800 MHz&quot; or &quot;2.4 GHz&quot;</source>
        <translation>eine Frequenz schreibt man wie &quot;800 MHz&quot; oder &quot;2.4 GHz&quot;</translation>
    </message>
    <message>
        <source>a size is written like &quot;12 bytes&quot;, &quot;1.5 KB&quot;, &quot;20 MB&quot; or &quot;2 GB&quot;</source>
        <translation>eine Größe schreibt man wie &quot;12 bytes&quot;, &quot;1.5 KB&quot;, &quot;20 MB&quot; oder &quot;2 GB&quot;</translation>
    </message>
    <message>
        <source>not a whole number of 64 bits: %1</source>
        <translation>keine ganze Zahl mit 64 Bit: %1</translation>
    </message>
    <message>
        <source>missing: %1</source>
        <translation>fehlt: %1</translation>
    </message>
    <message>
        <source>Purger</source>
        <translation>Bereiniger</translation>
    </message>
    <message>
        <source>Disk tool</source>
        <translation>Festplattenwerkzeug</translation>
    </message>
    <message>
        <source>Firewall tool</source>
        <translation>Firewall-Werkzeug</translation>
    </message>
    <message>
        <source>%1: %2 %</source>
        <translation>%1: %2 %</translation>
    </message>
    <message>
        <source>[yes/no]</source>
        <translation>[ja/nein]</translation>
    </message>
    <message>
        <source>the scheduler answered: %1</source>
        <translation>der Scheduler hat geantwortet: %1</translation>
    </message>
    <message>
        <source>the scheduler has gone</source>
        <translation>der Scheduler ist nicht mehr da</translation>
    </message>
    <message>
        <source>there are no notices</source>
        <translation>es gibt keine Hinweise</translation>
    </message>
    <message>
        <source>there is no notice %1</source>
        <translation>es gibt keinen Hinweis %1</translation>
    </message>
    <message>
        <source>there is no scheduler on the bus %1</source>
        <translation>auf dem Bus %1 ist kein Scheduler</translation>
    </message>
    <message>
        <source>the scheduler has not answered</source>
        <translation>der Scheduler hat nicht geantwortet</translation>
    </message>
    <message>
        <source>waiting for the scheduler</source>
        <translation>warte auf den Scheduler</translation>
    </message>
    <message>
        <source>another scheduler of this user keeps its notices in %1</source>
        <translation>ein anderer Scheduler dieses Benutzers führt seine Hinweise in %1</translation>
    </message>
    <message>
        <source>would tell: %1</source>
        <translation>würde melden: %1</translation>
    </message>
    <message>
        <source>there is nothing to tell</source>
        <translation>es gibt nichts zu melden</translation>
    </message>
    <message>
        <source>cannot read %1: %2; notices will not outlive this process</source>
        <translation>kann %1 nicht lesen: %2; Hinweise gehen mit diesem Prozess verloren</translation>
    </message>
    <message>
        <source>the state in %1 is damaged; it is kept as %2</source>
        <translation>der Zustand in %1 ist beschädigt; er wird als %2 aufgehoben</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>kann %1 nicht schreiben: %2</translation>
    </message>
    <message>
        <source>cannot look into the trash %1: %2</source>
        <translation>kann nicht in den Papierkorb %1 sehen: %2</translation>
    </message>
    <message>
        <source>the trash holds %1, more than %2</source>
        <translation>der Papierkorb enthält %1, mehr als %2</translation>
    </message>
    <message>
        <source>%1 are free on the disk of %2, less than %3</source>
        <translation>auf dem Datenträger von %2 sind %1 frei, weniger als %3</translation>
    </message>
    <message>
        <source>%1 of memory are free, less than %2</source>
        <translation>%1 Arbeitsspeicher sind frei, weniger als %2</translation>
    </message>
    <message>
        <source>the application %1 has been removed from %2 and may have left files behind</source>
        <translation>das Programm %1 wurde aus %2 entfernt und hat vielleicht Dateien zurückgelassen</translation>
    </message>
    <message>
        <source>the regular maintenance has been due since %1</source>
        <translation>die regelmäßige Wartung ist seit dem %1 fällig</translation>
    </message>
    <message>
        <source>there is no firewall tool on this machine</source>
        <translation>auf diesem Rechner gibt es kein Firewall-Werkzeug</translation>
    </message>
    <message>
        <source>Firewall: %1</source>
        <translation>Firewall: %1</translation>
    </message>
    <message>
        <source>Block all connections: %1</source>
        <translation>Alle Verbindungen blockieren: %1</translation>
    </message>
    <message>
        <source>Allow signed software: %1</source>
        <translation>Signierte Software zulassen: %1</translation>
    </message>
    <message>
        <source>Stealth mode: %1</source>
        <translation>Tarnmodus: %1</translation>
    </message>
    <message>
        <source>Applications: %1</source>
        <translation>Programme: %1</translation>
    </message>
    <message>
        <source>the firewall does not take this step: %1</source>
        <translation>die Firewall nimmt diesen Schritt nicht an: %1</translation>
    </message>
    <message>
        <source>nothing is changed: the administrator&apos;s authorisation was not given</source>
        <translation>nichts wurde geändert: die Erlaubnis eines Administrators wurde nicht erteilt</translation>
    </message>
    <message>
        <source>nothing is changed: the firewall&apos;s script could not be run</source>
        <translation>nichts wurde geändert: das Skript der Firewall konnte nicht gestartet werden</translation>
    </message>
    <message>
        <source>saved</source>
        <translation>gesichert</translation>
    </message>
    <message>
        <source>the firewall is not as it should be; what is missing:</source>
        <translation>die Firewall ist nicht, wie sie sein soll; es fehlt:</translation>
    </message>
    <message>
        <source>nothing to do: the firewall is like that already</source>
        <translation>nichts zu tun: die Firewall ist schon so</translation>
    </message>
    <message>
        <source>%1 is not an application: a folder whose name ends with .app is wanted</source>
        <translation>%1 ist kein Programm: verlangt ist ein Ordner, dessen Name mit .app endet</translation>
    </message>
    <message>
        <source>%1 is not in the firewall&apos;s list</source>
        <translation>%1 steht nicht in der Liste der Firewall</translation>
    </message>
    <message>
        <source>%1 is not in the firewall&apos;s list; add it first</source>
        <translation>%1 steht nicht in der Liste der Firewall; zuerst hinzufügen</translation>
    </message>
    <message>
        <source>contradictory orders for %1</source>
        <translation>widersprüchliche Anweisungen für %1</translation>
    </message>
    <message>
        <source>missing</source>
        <translation>fehlt</translation>
    </message>
    <message>
        <source>%1 (a stand-in)</source>
        <translation>%1 (ein Ersatz)</translation>
    </message>
    <message>
        <source>%1 was damaged; it is kept with &quot;.damaged&quot; after its name</source>
        <translation>%1 war beschädigt; die Datei wird mit „.damaged“ am Ende ihres Namens aufgehoben</translation>
    </message>
    <message>
        <source>%1 (stored: %2)</source>
        <translation>%1 (gespeichert: %2)</translation>
    </message>
    <message>
        <source>%1 is damaged; the next change keeps it with &quot;.damaged&quot; after its name</source>
        <translation>%1 ist beschädigt; die nächste Änderung hebt die Datei mit „.damaged“ am Ende ihres Namens auf</translation>
    </message>
    <message>
        <source>the settings were damaged; what they were is in %1</source>
        <translation>die Einstellungen waren beschädigt; ihr damaliger Inhalt steht in %1</translation>
    </message>
    <message>
        <source>%1 is stored as %2, which is not a value for it</source>
        <translation>%1 ist als %2 gespeichert; das ist kein Wert dafür</translation>
    </message>
    <message>
        <source>--state: %1 is a folder; name a file</source>
        <translation>--state: %1 ist ein Ordner; eine Datei angeben</translation>
    </message>
    <message>
        <source>--trash: %1 does not exist; it counts as empty</source>
        <translation>--trash: %1 gibt es nicht; das gilt als leerer Papierkorb</translation>
    </message>
    <message>
        <source>%1 must be a regular file, for it is the scheduler&apos;s lock; remove it</source>
        <translation>%1 muss eine gewöhnliche Datei sein, denn sie ist die Sperre des Schedulers; bitte entfernen</translation>
    </message>
    <message>
        <source>cannot lock %1: %2</source>
        <translation>%1 lässt sich nicht sperren: %2</translation>
    </message>
    <message>
        <source>the state in %1 is damaged and cannot be renamed: %2; notices will not outlive this process</source>
        <translation>der Zustand in %1 ist beschädigt und lässt sich nicht umbenennen: %2; Hinweise überdauern diesen Prozess nicht</translation>
    </message>
    <message>
        <source>cannot look at the disk of %1: %2</source>
        <translation>kann den Datenträger von %1 nicht ansehen: %2</translation>
    </message>
    <message>
        <source>cannot look for applications in %1</source>
        <translation>kann in %1 nicht nach Programmen suchen</translation>
    </message>
    <message>
        <source>%1 is not a setting; the keys are enabled, block-all, allow-signed and stealth, the values on and off</source>
        <translation>%1 ist keine Einstellung; die Schlüssel sind enabled, block-all, allow-signed und stealth, die Werte on und off</translation>
    </message>
    <message>
        <source>%1 must not be set both on and off</source>
        <translation>%1 darf nicht zugleich ein- und ausgeschaltet werden</translation>
    </message>
    <message>
        <source>the name of the socket of the bus %1 has %2 bytes, more than the possible %3: %4; set TMPDIR to a folder with a shorter name</source>
        <translation>der Name des Sockets des Busses %1 hat %2 Byte, mehr als die möglichen %3: %4; setzen Sie TMPDIR auf einen Ordner mit kürzerem Namen</translation>
    </message>
    <message>
        <source>the temporary folder %1 cannot be used: %2; set TMPDIR to a folder of your own</source>
        <translation>der temporäre Ordner %1 ist nicht zu gebrauchen: %2; setzen Sie TMPDIR auf einen eigenen Ordner</translation>
    </message>
    <message>
        <source>a folder is in the place of the socket of the bus %1: %2; remove it</source>
        <translation>an der Stelle des Sockets des Busses %1 liegt ein Ordner: %2; entfernen Sie ihn</translation>
    </message>
    <message>
        <source>the socket of the bus %1 belongs to the user with the number %2: %3; set TMPDIR to a folder of your own</source>
        <translation>der Socket des Busses %1 gehört dem Benutzer mit der Nummer %2: %3; setzen Sie TMPDIR auf einen eigenen Ordner</translation>
    </message>
    <message>
        <source>%1 lines were dropped because the output was not read</source>
        <translation>%1 Zeilen wurden verworfen, weil die Ausgabe nicht gelesen wurde</translation>
    </message>
    <message>
        <source>the end of the output was not read</source>
        <translation>das Ende der Ausgabe wurde nicht gelesen</translation>
    </message>
</context>
<context>
    <name>Tavrik::Ostrel::DaemonSettings</name>
    <message>
        <source>Weekly</source>
        <translation>Wöchentlich</translation>
    </message>
    <message>
        <source>Once in two weeks</source>
        <translation>Alle zwei Wochen</translation>
    </message>
    <message>
        <source>Monthly</source>
        <translation>Monatlich</translation>
    </message>
    <message>
        <source>Once in three months</source>
        <translation>Alle drei Monate</translation>
    </message>
    <message>
        <source>Once in six months</source>
        <translation>Alle sechs Monate</translation>
    </message>
    <message>
        <source>Annualy</source>
        <translation>Jährlich</translation>
    </message>
</context>
</TS>

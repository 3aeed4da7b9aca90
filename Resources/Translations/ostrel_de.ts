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
        <source>there is no firewall tool on this machine</source>
        <translation>auf diesem Rechner gibt es kein Firewall-Werkzeug</translation>
    </message>
    <message>
        <source>on</source>
        <translation>ein</translation>
    </message>
    <message>
        <source>off</source>
        <translation>aus</translation>
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

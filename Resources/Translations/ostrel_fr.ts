<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr" sourcelanguage="en">
<context>
    <name>FormatText</name>
    <message>
        <source>%1 bytes</source>
        <translation>%1 octets</translation>
    </message>
    <message>
        <source>%1 kB</source>
        <translation>%1 ko</translation>
    </message>
    <message>
        <source>%1 MB</source>
        <translation>%1 Mo</translation>
    </message>
    <message>
        <source>%1 GB</source>
        <translation>%1 Go</translation>
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
        <translation>%1 octets</translation>
    </message>
    <message>
        <source>no result came for the message to %1</source>
        <translation>aucun résultat n&apos;est arrivé pour le message à %1</translation>
    </message>
    <message>
        <source>listening as %1 on the bus %2</source>
        <translation>à l’écoute en tant que %1 sur le bus %2</translation>
    </message>
    <message>
        <source>%1 has not come</source>
        <translation>%1 n&apos;est pas venu</translation>
    </message>
    <message>
        <source>%1 could not join the bus %2 within %3 s: the name is taken or the server does not answer</source>
        <translation>%1 n&apos;a pas pu rejoindre le bus %2 en %3 s : le nom est pris ou le serveur ne répond pas</translation>
    </message>
    <message>
        <source>nobody serves the bus %1</source>
        <translation>personne ne sert le bus %1</translation>
    </message>
    <message>
        <source>the name %1 is taken on the bus %2</source>
        <translation>le nom %1 est pris sur le bus %2</translation>
    </message>
    <message>
        <source>the server of the bus %1 has gone</source>
        <translation>le serveur du bus %1 a disparu</translation>
    </message>
    <message>
        <source>a process that cannot be seen from here</source>
        <translation>un processus invisible d’ici</translation>
    </message>
    <message>
        <source>process %1</source>
        <translation>processus %1</translation>
    </message>
    <message>
        <source>%1 (process %2)</source>
        <translation>%1 (processus %2)</translation>
    </message>
    <message>
        <source>The bus %1 is served by %2. Its members: %3.</source>
        <translation>Le bus %1 est servi par %2. Ses membres : %3.</translation>
    </message>
    <message>
        <source>The system refuses the connection to the bus %1 at %2: %3.</source>
        <translation>Le système refuse la connexion au bus %1 à %2 : %3.</translation>
    </message>
    <message>
        <source>Nobody serves the bus %1: there is no socket %2.</source>
        <translation>Personne ne sert le bus %1 : le socket %2 n&apos;existe pas.</translation>
    </message>
    <message>
        <source>The name %1 is taken on the bus %2, which is served by %3.</source>
        <translation>Le nom %1 est pris sur le bus %2, servi par %3.</translation>
    </message>
    <message>
        <source>The server of the bus %1 does not answer: %2. It may be stopped or busy.</source>
        <translation>Le serveur du bus %1 ne répond pas : %2. Il est peut-être arrêté ou occupé.</translation>
    </message>
    <message>
        <source>A process that is joining the bus %1 keeps all others out: it holds %2.lock. It may be stopped or busy.</source>
        <translation>Un processus qui rejoint le bus %1 bloque tous les autres : il tient %2.lock. Il est peut-être arrêté ou occupé.</translation>
    </message>
    <message>
        <source>Nobody serves the bus %1: a server that has gone left the socket %2 behind. The next process that may serve clears it away.</source>
        <translation>Personne ne sert le bus %1 : un serveur disparu a laissé le socket %2. Le prochain processus qui peut servir l’enlèvera.</translation>
    </message>
    <message>
        <source>A file that is no socket is where the socket of the bus %1 belongs. Remove it: %2.</source>
        <translation>À la place du socket du bus %1 se trouve un fichier qui n&apos;est pas un socket. Supprimez-le : %2.</translation>
    </message>
    <message>
        <source>A folder is where the socket of the bus %1 belongs. Remove it: %2.</source>
        <translation>À la place du socket du bus %1 se trouve un dossier. Supprimez-le : %2.</translation>
    </message>
    <message>
        <source>A link to %1 is where the socket of the bus %2 belongs. Remove it: %3.</source>
        <translation>À la place du socket du bus %2 se trouve un lien vers %1. Supprimez-le : %3.</translation>
    </message>
    <message>
        <source>The socket of the bus %1 belongs to the user with the number %2: %3. Set TMPDIR to a folder of your own.</source>
        <translation>Le socket du bus %1 appartient à l&apos;utilisateur numéro %2 : %3. Donnez à TMPDIR un dossier à vous.</translation>
    </message>
    <message>
        <source>The name of the socket of the bus %1 has %2 bytes, and no more than %3 are possible: %4. Set TMPDIR to a folder with a shorter name.</source>
        <translation>Le nom du socket du bus %1 a %2 octets, et il n&apos;en faut pas plus de %3 : %4. Donnez à TMPDIR un dossier au nom plus court.</translation>
    </message>
    <message>
        <source>The bus %1 is served in another temporary folder, %2, by %3. This process looks in %4. TMPDIR must be the same for both.</source>
        <translation>Le bus %1 est servi dans un autre dossier temporaire, %2, par %3. Ce processus cherche dans %4. TMPDIR doit être le même pour les deux.</translation>
    </message>
    <message>
        <source>The bus %1 is served by %2, but its socket %3 has been removed: who comes now does not find it. Start that process again.</source>
        <translation>Le bus %1 est servi par %2, mais son socket %3 a été supprimé : les nouveaux venus ne le trouvent pas. Relancez ce processus.</translation>
    </message>
    <message>
        <source>The temporary folder %1 cannot be used: %2.</source>
        <translation>Le dossier temporaire %1 est inutilisable : %2.</translation>
    </message>
    <message>
        <source>%1 listens on the socket of the bus %2 but does not speak its language: %3.</source>
        <translation>%1 écoute sur le socket du bus %2 mais ne parle pas son langage : %3.</translation>
    </message>
    <message>
        <source>Another bus of this name is served in the temporary folder %1 by %2.</source>
        <translation>Un autre bus de ce nom est servi dans le dossier temporaire %1 par %2.</translation>
    </message>
    <message>
        <source>cannot write to the standard output: %1</source>
        <translation>impossible d&apos;écrire sur la sortie standard : %1</translation>
    </message>
    <message>
        <source>the message is longer than %1 bytes</source>
        <translation>le message dépasse %1 octets</translation>
    </message>
    <message>
        <source>cannot read %1: %2</source>
        <translation>impossible de lire %1 : %2</translation>
    </message>
    <message>
        <source>the standard input</source>
        <translation>l&apos;entrée standard</translation>
    </message>
    <message>
        <source>a line to say is too long</source>
        <translation>une ligne à dire est trop longue</translation>
    </message>
    <message>
        <source>cannot say a line that does not begin with a name: %1</source>
        <translation>impossible de dire une ligne qui ne commence pas par un nom : %1</translation>
    </message>
    <message>
        <source>there is no firewall tool on this machine</source>
        <translation>il n’y a pas d’outil de pare-feu sur cette machine</translation>
    </message>
    <message>
        <source>on</source>
        <translation>activé</translation>
    </message>
    <message>
        <source>off</source>
        <translation>désactivé</translation>
    </message>
    <message>
        <source>Firewall: %1</source>
        <translation>Pare-feu : %1</translation>
    </message>
    <message>
        <source>Block all connections: %1</source>
        <translation>Bloquer toutes les connexions : %1</translation>
    </message>
    <message>
        <source>Allow signed software: %1</source>
        <translation>Autoriser les logiciels signés : %1</translation>
    </message>
    <message>
        <source>Stealth mode: %1</source>
        <translation>Mode furtif : %1</translation>
    </message>
    <message>
        <source>Applications: %1</source>
        <translation>Applications : %1</translation>
    </message>
    <message>
        <source>the firewall does not take this step: %1</source>
        <translation>le pare-feu n’accepte pas cette étape : %1</translation>
    </message>
    <message>
        <source>nothing is changed: the administrator&apos;s authorisation was not given</source>
        <translation>rien n’a changé : l’autorisation de l’administrateur n’a pas été donnée</translation>
    </message>
    <message>
        <source>nothing is changed: the firewall&apos;s script could not be run</source>
        <translation>rien n’a changé : le script du pare-feu n’a pas pu être lancé</translation>
    </message>
    <message>
        <source>saved</source>
        <translation>enregistré</translation>
    </message>
    <message>
        <source>the firewall is not as it should be; what is missing:</source>
        <translation>le pare-feu n’est pas comme il devrait ; il manque :</translation>
    </message>
    <message>
        <source>nothing to do: the firewall is like that already</source>
        <translation>rien à faire : le pare-feu est déjà ainsi</translation>
    </message>
    <message>
        <source>%1 is not an application: a folder whose name ends with .app is wanted</source>
        <translation>%1 n’est pas une application : il faut un dossier dont le nom finit par .app</translation>
    </message>
    <message>
        <source>%1 is not in the firewall&apos;s list</source>
        <translation>%1 n’est pas dans la liste du pare-feu</translation>
    </message>
    <message>
        <source>%1 is not in the firewall&apos;s list; add it first</source>
        <translation>%1 n’est pas dans la liste du pare-feu ; ajoutez-la d’abord</translation>
    </message>
    <message>
        <source>contradictory orders for %1</source>
        <translation>ordres contradictoires pour %1</translation>
    </message>
</context>
<context>
    <name>Tavrik::Ostrel::DaemonSettings</name>
    <message>
        <source>Weekly</source>
        <translation>Chaque semaine</translation>
    </message>
    <message>
        <source>Once in two weeks</source>
        <translation>Toutes les deux semaines</translation>
    </message>
    <message>
        <source>Monthly</source>
        <translation>Chaque mois</translation>
    </message>
    <message>
        <source>Once in three months</source>
        <translation>Tous les trois mois</translation>
    </message>
    <message>
        <source>Once in six months</source>
        <translation>Tous les six mois</translation>
    </message>
    <message>
        <source>Annualy</source>
        <translation>Chaque année</translation>
    </message>
</context>
</TS>

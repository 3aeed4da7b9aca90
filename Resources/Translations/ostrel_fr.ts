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
        <source>unknown</source>
        <translation>inconnu</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nom</translation>
    </message>
    <message>
        <source>Mounted at</source>
        <translation>Monté sur</translation>
    </message>
    <message>
        <source>Total</source>
        <translation>Total</translation>
    </message>
    <message>
        <source>Free</source>
        <translation>Libre</translation>
    </message>
    <message>
        <source>Used</source>
        <translation>Utilisé</translation>
    </message>
    <message>
        <source>the disk tool diskutil is missing; it comes with macOS and is looked for in PATH</source>
        <translation>l&apos;outil de disques diskutil est absent ; il est fourni avec macOS et cherché dans PATH</translation>
    </message>
    <message>
        <source>diskutil tells of no mounted disk</source>
        <translation>diskutil n&apos;indique aucun disque monté</translation>
    </message>
    <message>
        <source>there is no %1</source>
        <translation>%1 n&apos;existe pas</translation>
    </message>
    <message>
        <source>no disk holds %1</source>
        <translation>aucun disque ne contient %1</translation>
    </message>
    <message>
        <source>not UTF-8: %1</source>
        <translation>n&apos;est pas de l&apos;UTF-8 : %1</translation>
    </message>
    <message>
        <source>the path is no text in this locale: %1</source>
        <translation>le chemin n&apos;est pas du texte dans ces paramètres régionaux : %1</translation>
    </message>
    <message>
        <source>a file</source>
        <translation>un fichier</translation>
    </message>
    <message>
        <source>a folder</source>
        <translation>un dossier</translation>
    </message>
    <message>
        <source>a link</source>
        <translation>un lien</translation>
    </message>
    <message>
        <source>a link to nothing</source>
        <translation>un lien vers rien</translation>
    </message>
    <message>
        <source>neither file nor folder</source>
        <translation>ni fichier ni dossier</translation>
    </message>
    <message>
        <source>not there</source>
        <translation>absent</translation>
    </message>
    <message>
        <source>the path does not begin with /</source>
        <translation>le chemin ne commence pas par /</translation>
    </message>
    <message>
        <source>a component of the path is &quot;..&quot;</source>
        <translation>un élément du chemin est &quot;..&quot;</translation>
    </message>
    <message>
        <source>language folders may be removed anywhere</source>
        <translation>les dossiers de langue peuvent être supprimés partout</translation>
    </message>
    <message>
        <source>%1 may be cleaned</source>
        <translation>%1 peut être nettoyé</translation>
    </message>
    <message>
        <source>it is on a writable volume</source>
        <translation>il est sur un volume inscriptible</translation>
    </message>
    <message>
        <source>under /Volumes only what exists may be removed</source>
        <translation>sous /Volumes, seul ce qui existe peut être supprimé</translation>
    </message>
    <message>
        <source>no writable volume holds it</source>
        <translation>aucun volume inscriptible ne le contient</translation>
    </message>
    <message>
        <source>it lies in no folder that may be cleaned</source>
        <translation>il n&apos;est dans aucun dossier à nettoyer</translation>
    </message>
    <message>
        <source>what may be removed may be searched</source>
        <translation>ce qui peut être supprimé peut être parcouru</translation>
    </message>
    <message>
        <source>%1 is a library folder of the system</source>
        <translation>%1 est un dossier de bibliothèque du système</translation>
    </message>
    <message>
        <source>it may not be removed and is in no library folder</source>
        <translation>il ne peut être supprimé et n&apos;est dans aucun dossier de bibliothèque</translation>
    </message>
    <message>
        <source>yes</source>
        <translation>oui</translation>
    </message>
    <message>
        <source>no</source>
        <translation>non</translation>
    </message>
    <message>
        <source>none</source>
        <translation>aucun</translation>
    </message>
    <message>
        <source>What it is</source>
        <translation>Ce que c&apos;est</translation>
    </message>
    <message>
        <source>Safe to remove</source>
        <translation>Suppression permise</translation>
    </message>
    <message>
        <source>To be searched</source>
        <translation>Parcours permis</translation>
    </message>
    <message>
        <source>You may read it</source>
        <translation>Vous pouvez le lire</translation>
    </message>
    <message>
        <source>You may write it</source>
        <translation>Vous pouvez l&apos;écrire</translation>
    </message>
    <message>
        <source>You may remove it</source>
        <translation>Vous pouvez le supprimer</translation>
    </message>
    <message>
        <source>With all inside</source>
        <translation>Avec tout son contenu</translation>
    </message>
    <message>
        <source>Application</source>
        <translation>Application</translation>
    </message>
    <message>
        <source>Language folder</source>
        <translation>Dossier de langue</translation>
    </message>
    <message>
        <source>Disk</source>
        <translation>Disque</translation>
    </message>
    <message>
        <source>the system does not tell its memory</source>
        <translation>le système ne donne pas sa mémoire</translation>
    </message>
    <message>
        <source>Memory</source>
        <translation>Mémoire</translation>
    </message>
    <message>
        <source>Cleaning the memory</source>
        <translation>Nettoyage de la mémoire</translation>
    </message>
    <message>
        <source>the purger cannot be started: %1</source>
        <translation>le programme de nettoyage ne peut pas être lancé : %1</translation>
    </message>
    <message>
        <source>Freed %1.</source>
        <translation>%1 libérés.</translation>
    </message>
    <message>
        <source>The time is over; %1 were freed.</source>
        <translation>Le temps est écoulé ; %1 libérés.</translation>
    </message>
    <message>
        <source>Stopped; %1 were freed.</source>
        <translation>Arrêté ; %1 libérés.</translation>
    </message>
    <message>
        <source>on, true, yes, 1, or off, false, no, 0</source>
        <translation>on, true, yes, 1 ou off, false, no, 0</translation>
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
        <source>bytes, or a size such as &quot;500 MB&quot; or &quot;2 GB&quot;</source>
        <translation>des octets ou une taille comme &quot;500 MB&quot; ou &quot;2 GB&quot;</translation>
    </message>
    <message>
        <source>a part of the memory between 0 and 1, such as 0.05, or a percentage such as 5%</source>
        <translation>une part de la mémoire entre 0 et 1, comme 0.05, ou un pourcentage comme 5%</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>a date such as 2026-01-31, or none</source>
        <translation>une date comme 2026-01-31, ou none</translation>
    </message>
    <message>
        <source>%1 (no period)</source>
        <translation>%1 (pas une période)</translation>
    </message>
    <message>
        <source>a path that begins with /</source>
        <translation>un chemin qui commence par /</translation>
    </message>
    <message>
        <source>a URL such as https://example.org/help</source>
        <translation>une URL comme https://example.org/help</translation>
    </message>
    <message>
        <source>there is no setting %1; &quot;settings list&quot; names them</source>
        <translation>il n&apos;y a pas de réglage %1 ; &quot;settings list&quot; les énumère</translation>
    </message>
    <message>
        <source>the settings cannot be written: %1</source>
        <translation>les réglages ne peuvent pas être écrits : %1</translation>
    </message>
    <message>
        <source>No reminder.</source>
        <translation>Aucun rappel.</translation>
    </message>
    <message>
        <source>Next reminder: %1, counted from %2.</source>
        <translation>Prochain rappel : %1, compté à partir du %2.</translation>
    </message>
    <message>
        <source>Setting</source>
        <translation>Réglage</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Valeur</translation>
    </message>
    <message>
        <source>Default</source>
        <translation>Par défaut</translation>
    </message>
    <message>
        <source>%1 is no value for %2, which takes %3</source>
        <translation>%1 n&apos;est pas une valeur pour %2, qui admet %3</translation>
    </message>
    <message>
        <source>name a setting, or all of them with --all</source>
        <translation>nommez un réglage, ou tous avec --all</translation>
    </message>
    <message>
        <source>Set all settings back to their defaults?</source>
        <translation>Remettre tous les réglages à leurs valeurs par défaut ?</translation>
    </message>
    <message>
        <source>nothing was changed; --yes needs no answer</source>
        <translation>rien n&apos;a été changé ; --yes se passe de réponse</translation>
    </message>
    <message>
        <source>a frequency is written like &quot;800 MHz&quot; or &quot;2.4 GHz&quot;</source>
        <translation>une fréquence s&apos;écrit comme &quot;800 MHz&quot; ou &quot;2.4 GHz&quot;</translation>
    </message>
    <message>
        <source>a size is written like &quot;12 bytes&quot;, &quot;1.5 KB&quot;, &quot;20 MB&quot; or &quot;2 GB&quot;</source>
        <translation>une taille s&apos;écrit comme &quot;12 bytes&quot;, &quot;1.5 KB&quot;, &quot;20 MB&quot; ou &quot;2 GB&quot;</translation>
    </message>
    <message>
        <source>not a whole number of 64 bits: %1</source>
        <translation>n&apos;est pas un entier de 64 bits : %1</translation>
    </message>
    <message>
        <source>missing: %1</source>
        <translation>absent : %1</translation>
    </message>
    <message>
        <source>Purger</source>
        <translation>Nettoyeur</translation>
    </message>
    <message>
        <source>Disk tool</source>
        <translation>Outil de disques</translation>
    </message>
    <message>
        <source>Firewall tool</source>
        <translation>Outil du pare-feu</translation>
    </message>
    <message>
        <source>%1: %2 %</source>
        <translation>%1 : %2 %</translation>
    </message>
    <message>
        <source>[yes/no]</source>
        <translation>[oui/non]</translation>
    </message>
    <message>
        <source>the scheduler answered: %1</source>
        <translation>le planificateur a répondu : %1</translation>
    </message>
    <message>
        <source>the scheduler has gone</source>
        <translation>le planificateur n&apos;est plus là</translation>
    </message>
    <message>
        <source>there are no notices</source>
        <translation>il n&apos;y a aucun avis</translation>
    </message>
    <message>
        <source>there is no notice %1</source>
        <translation>il n&apos;y a pas d&apos;avis %1</translation>
    </message>
    <message>
        <source>there is no scheduler on the bus %1</source>
        <translation>il n&apos;y a pas de planificateur sur le bus %1</translation>
    </message>
    <message>
        <source>the scheduler has not answered</source>
        <translation>le planificateur n&apos;a pas répondu</translation>
    </message>
    <message>
        <source>waiting for the scheduler</source>
        <translation>en attente du planificateur</translation>
    </message>
    <message>
        <source>another scheduler of this user keeps its notices in %1</source>
        <translation>un autre planificateur de cet utilisateur conserve ses avis dans %1</translation>
    </message>
    <message>
        <source>would tell: %1</source>
        <translation>signalerait : %1</translation>
    </message>
    <message>
        <source>there is nothing to tell</source>
        <translation>il n&apos;y a rien à signaler</translation>
    </message>
    <message>
        <source>cannot read %1: %2; notices will not outlive this process</source>
        <translation>impossible de lire %1 : %2 ; les avis seront perdus avec ce processus</translation>
    </message>
    <message>
        <source>the state in %1 is damaged; it is kept as %2</source>
        <translation>l&apos;état dans %1 est endommagé ; il est conservé sous %2</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>impossible d&apos;écrire %1 : %2</translation>
    </message>
    <message>
        <source>cannot look into the trash %1: %2</source>
        <translation>impossible de lire la corbeille %1 : %2</translation>
    </message>
    <message>
        <source>the trash holds %1, more than %2</source>
        <translation>la corbeille contient %1, plus de %2</translation>
    </message>
    <message>
        <source>%1 are free on the disk of %2, less than %3</source>
        <translation>il reste %1 libres sur le disque de %2, moins de %3</translation>
    </message>
    <message>
        <source>%1 of memory are free, less than %2</source>
        <translation>il reste %1 de mémoire libre, moins de %2</translation>
    </message>
    <message>
        <source>the application %1 has been removed from %2 and may have left files behind</source>
        <translation>l&apos;application %1 a été supprimée de %2 et a peut-être laissé des fichiers</translation>
    </message>
    <message>
        <source>the regular maintenance has been due since %1</source>
        <translation>l&apos;entretien régulier est à faire depuis le %1</translation>
    </message>
    <message>
        <source>there is no firewall tool on this machine</source>
        <translation>il n’y a pas d’outil de pare-feu sur cette machine</translation>
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
    <message>
        <source>missing</source>
        <translation>absent</translation>
    </message>
    <message>
        <source>%1 (a stand-in)</source>
        <translation>%1 (un remplaçant)</translation>
    </message>
    <message>
        <source>%1 was damaged; it is kept with &quot;.damaged&quot; after its name</source>
        <translation>%1 était endommagé ; le fichier est conservé avec « .damaged » à la fin de son nom</translation>
    </message>
    <message>
        <source>%1 (stored: %2)</source>
        <translation>%1 (enregistré : %2)</translation>
    </message>
    <message>
        <source>%1 is damaged; the next change keeps it with &quot;.damaged&quot; after its name</source>
        <translation>%1 est endommagé ; la prochaine modification conserve le fichier avec « .damaged » à la fin de son nom</translation>
    </message>
    <message>
        <source>the settings were damaged; what they were is in %1</source>
        <translation>les réglages étaient endommagés ; leur ancien contenu se trouve dans %1</translation>
    </message>
    <message>
        <source>%1 is stored as %2, which is not a value for it</source>
        <translation>%1 est enregistré comme %2, ce qui n&apos;est pas une valeur valable</translation>
    </message>
    <message>
        <source>--state: %1 is a folder; name a file</source>
        <translation>--state : %1 est un dossier ; indiquez un fichier</translation>
    </message>
    <message>
        <source>--trash: %1 does not exist; it counts as empty</source>
        <translation>--trash : %1 n&apos;existe pas ; la corbeille est considérée comme vide</translation>
    </message>
    <message>
        <source>%1 must be a regular file, for it is the scheduler&apos;s lock; remove it</source>
        <translation>%1 doit être un fichier ordinaire, car c&apos;est le verrou du planificateur ; supprimez-le</translation>
    </message>
    <message>
        <source>cannot lock %1: %2</source>
        <translation>impossible de verrouiller %1 : %2</translation>
    </message>
    <message>
        <source>the state in %1 is damaged and cannot be renamed: %2; notices will not outlive this process</source>
        <translation>l&apos;état dans %1 est endommagé et ne peut pas être renommé : %2 ; les avis ne survivront pas à ce processus</translation>
    </message>
    <message>
        <source>cannot look at the disk of %1: %2</source>
        <translation>impossible d&apos;examiner le disque de %1 : %2</translation>
    </message>
    <message>
        <source>cannot look for applications in %1</source>
        <translation>impossible de chercher des applications dans %1</translation>
    </message>
    <message>
        <source>%1 is not a setting; the keys are enabled, block-all, allow-signed and stealth, the values on and off</source>
        <translation>%1 n&apos;est pas un réglage ; les clés sont enabled, block-all, allow-signed et stealth, les valeurs on et off</translation>
    </message>
    <message>
        <source>%1 must not be set both on and off</source>
        <translation>%1 ne peut pas être à la fois activé et désactivé</translation>
    </message>
    <message>
        <source>the name of the socket of the bus %1 has %2 bytes, more than the possible %3: %4; set TMPDIR to a folder with a shorter name</source>
        <translation>le nom du socket du bus %1 a %2 octets, plus que les %3 possibles : %4 ; donnez à TMPDIR un dossier au nom plus court</translation>
    </message>
    <message>
        <source>the temporary folder %1 cannot be used: %2; set TMPDIR to a folder of your own</source>
        <translation>le dossier temporaire %1 est inutilisable : %2 ; donnez à TMPDIR un dossier à vous</translation>
    </message>
    <message>
        <source>a folder is in the place of the socket of the bus %1: %2; remove it</source>
        <translation>à la place du socket du bus %1 se trouve un dossier : %2 ; supprimez-le</translation>
    </message>
    <message>
        <source>the socket of the bus %1 belongs to the user with the number %2: %3; set TMPDIR to a folder of your own</source>
        <translation>le socket du bus %1 appartient à l&apos;utilisateur numéro %2 : %3 ; donnez à TMPDIR un dossier à vous</translation>
    </message>
    <message>
        <source>%1 lines were dropped because the output was not read</source>
        <translation>%1 lignes ont été abandonnées parce que la sortie n&apos;était pas lue</translation>
    </message>
    <message>
        <source>the end of the output was not read</source>
        <translation>la fin de la sortie n&apos;a pas été lue</translation>
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

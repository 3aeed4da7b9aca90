<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es" sourcelanguage="en">
<context>
    <name>FormatText</name>
    <message>
        <source>%1 bytes</source>
        <translation>%1 bytes</translation>
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
        <translation>%1 bytes</translation>
    </message>
    <message>
        <source>no result came for the message to %1</source>
        <translation>no llegó ningún resultado del mensaje para %1</translation>
    </message>
    <message>
        <source>listening as %1 on the bus %2</source>
        <translation>escuchando como %1 en el bus %2</translation>
    </message>
    <message>
        <source>%1 has not come</source>
        <translation>%1 no ha llegado</translation>
    </message>
    <message>
        <source>%1 could not join the bus %2 within %3 s: the name is taken or the server does not answer</source>
        <translation>%1 no pudo unirse al bus %2 en %3 s: el nombre está ocupado o el servidor no responde</translation>
    </message>
    <message>
        <source>nobody serves the bus %1</source>
        <translation>nadie sirve el bus %1</translation>
    </message>
    <message>
        <source>the name %1 is taken on the bus %2</source>
        <translation>el nombre %1 está ocupado en el bus %2</translation>
    </message>
    <message>
        <source>the server of the bus %1 has gone</source>
        <translation>el servidor del bus %1 ha desaparecido</translation>
    </message>
    <message>
        <source>a process that cannot be seen from here</source>
        <translation>un proceso que no se ve desde aquí</translation>
    </message>
    <message>
        <source>process %1</source>
        <translation>proceso %1</translation>
    </message>
    <message>
        <source>%1 (process %2)</source>
        <translation>%1 (proceso %2)</translation>
    </message>
    <message>
        <source>The bus %1 is served by %2. Its members: %3.</source>
        <translation>El bus %1 lo sirve %2. Sus miembros: %3.</translation>
    </message>
    <message>
        <source>The system refuses the connection to the bus %1 at %2: %3.</source>
        <translation>El sistema rechaza la conexión al bus %1 en %2: %3.</translation>
    </message>
    <message>
        <source>Nobody serves the bus %1: there is no socket %2.</source>
        <translation>Nadie sirve el bus %1: no existe el socket %2.</translation>
    </message>
    <message>
        <source>The name %1 is taken on the bus %2, which is served by %3.</source>
        <translation>El nombre %1 está ocupado en el bus %2, servido por %3.</translation>
    </message>
    <message>
        <source>The server of the bus %1 does not answer: %2. It may be stopped or busy.</source>
        <translation>El servidor del bus %1 no responde: %2. Puede estar detenido u ocupado.</translation>
    </message>
    <message>
        <source>A process that is joining the bus %1 keeps all others out: it holds %2.lock. It may be stopped or busy.</source>
        <translation>Un proceso que se está uniendo al bus %1 impide la entrada a los demás: retiene %2.lock. Puede estar detenido u ocupado.</translation>
    </message>
    <message>
        <source>Nobody serves the bus %1: a server that has gone left the socket %2 behind. The next process that may serve clears it away.</source>
        <translation>Nadie sirve el bus %1: un servidor desaparecido dejó el socket %2. El próximo proceso que pueda servir lo retirará.</translation>
    </message>
    <message>
        <source>A file that is no socket is where the socket of the bus %1 belongs. Remove it: %2.</source>
        <translation>En el lugar del socket del bus %1 hay un archivo que no es un socket. Elimínelo: %2.</translation>
    </message>
    <message>
        <source>A folder is where the socket of the bus %1 belongs. Remove it: %2.</source>
        <translation>En el lugar del socket del bus %1 hay una carpeta. Elimínela: %2.</translation>
    </message>
    <message>
        <source>A link to %1 is where the socket of the bus %2 belongs. Remove it: %3.</source>
        <translation>En el lugar del socket del bus %2 hay un enlace a %1. Elimínelo: %3.</translation>
    </message>
    <message>
        <source>The socket of the bus %1 belongs to the user with the number %2: %3. Set TMPDIR to a folder of your own.</source>
        <translation>El socket del bus %1 pertenece al usuario número %2: %3. Asigne a TMPDIR una carpeta propia.</translation>
    </message>
    <message>
        <source>The name of the socket of the bus %1 has %2 bytes, and no more than %3 are possible: %4. Set TMPDIR to a folder with a shorter name.</source>
        <translation>El nombre del socket del bus %1 tiene %2 bytes y no puede tener más de %3: %4. Asigne a TMPDIR una carpeta con un nombre más corto.</translation>
    </message>
    <message>
        <source>The bus %1 is served in another temporary folder, %2, by %3. This process looks in %4. TMPDIR must be the same for both.</source>
        <translation>El bus %1 se sirve en otra carpeta temporal, %2, por %3. Este proceso busca en %4. TMPDIR debe ser igual para ambos.</translation>
    </message>
    <message>
        <source>The bus %1 is served by %2, but its socket %3 has been removed: who comes now does not find it. Start that process again.</source>
        <translation>El bus %1 lo sirve %2, pero su socket %3 fue eliminado: quien llegue ahora no lo encontrará. Reinicie ese proceso.</translation>
    </message>
    <message>
        <source>The temporary folder %1 cannot be used: %2.</source>
        <translation>La carpeta temporal %1 no se puede usar: %2.</translation>
    </message>
    <message>
        <source>%1 listens on the socket of the bus %2 but does not speak its language: %3.</source>
        <translation>%1 escucha en el socket del bus %2 pero no habla su lenguaje: %3.</translation>
    </message>
    <message>
        <source>Another bus of this name is served in the temporary folder %1 by %2.</source>
        <translation>Otro bus con este nombre se sirve en la carpeta temporal %1 por %2.</translation>
    </message>
    <message>
        <source>cannot write to the standard output: %1</source>
        <translation>no se puede escribir en la salida estándar: %1</translation>
    </message>
    <message>
        <source>the message is longer than %1 bytes</source>
        <translation>el mensaje tiene más de %1 bytes</translation>
    </message>
    <message>
        <source>cannot read %1: %2</source>
        <translation>no se puede leer %1: %2</translation>
    </message>
    <message>
        <source>the standard input</source>
        <translation>la entrada estándar</translation>
    </message>
    <message>
        <source>a line to say is too long</source>
        <translation>una línea que decir es demasiado larga</translation>
    </message>
    <message>
        <source>cannot say a line that does not begin with a name: %1</source>
        <translation>no se puede decir una línea que no empieza con un nombre: %1</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>desconocido</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nombre</translation>
    </message>
    <message>
        <source>Mounted at</source>
        <translation>Montado en</translation>
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
        <translation>Usado</translation>
    </message>
    <message>
        <source>the disk tool diskutil is missing; it comes with macOS and is looked for in PATH</source>
        <translation>falta la herramienta de discos diskutil; viene con macOS y se busca en PATH</translation>
    </message>
    <message>
        <source>diskutil tells of no mounted disk</source>
        <translation>diskutil no indica ningún disco montado</translation>
    </message>
    <message>
        <source>there is no %1</source>
        <translation>no existe %1</translation>
    </message>
    <message>
        <source>no disk holds %1</source>
        <translation>ningún disco contiene %1</translation>
    </message>
    <message>
        <source>not UTF-8: %1</source>
        <translation>no es UTF-8: %1</translation>
    </message>
    <message>
        <source>the path is no text in this locale: %1</source>
        <translation>la ruta no es texto en esta configuración regional: %1</translation>
    </message>
    <message>
        <source>a file</source>
        <translation>un archivo</translation>
    </message>
    <message>
        <source>a folder</source>
        <translation>una carpeta</translation>
    </message>
    <message>
        <source>a link</source>
        <translation>un enlace</translation>
    </message>
    <message>
        <source>a link to nothing</source>
        <translation>un enlace a nada</translation>
    </message>
    <message>
        <source>neither file nor folder</source>
        <translation>ni archivo ni carpeta</translation>
    </message>
    <message>
        <source>not there</source>
        <translation>no existe</translation>
    </message>
    <message>
        <source>the path does not begin with /</source>
        <translation>la ruta no empieza con /</translation>
    </message>
    <message>
        <source>a component of the path is &quot;..&quot;</source>
        <translation>un componente de la ruta es &quot;..&quot;</translation>
    </message>
    <message>
        <source>language folders may be removed anywhere</source>
        <translation>las carpetas de idioma se pueden eliminar en cualquier lugar</translation>
    </message>
    <message>
        <source>%1 may be cleaned</source>
        <translation>%1 se puede limpiar</translation>
    </message>
    <message>
        <source>it is on a writable volume</source>
        <translation>está en un volumen con escritura</translation>
    </message>
    <message>
        <source>under /Volumes only what exists may be removed</source>
        <translation>en /Volumes solo se puede eliminar lo que existe</translation>
    </message>
    <message>
        <source>no writable volume holds it</source>
        <translation>ningún volumen con escritura lo contiene</translation>
    </message>
    <message>
        <source>it lies in no folder that may be cleaned</source>
        <translation>no está en ninguna carpeta que se pueda limpiar</translation>
    </message>
    <message>
        <source>what may be removed may be searched</source>
        <translation>lo que se puede eliminar se puede examinar</translation>
    </message>
    <message>
        <source>%1 is a library folder of the system</source>
        <translation>%1 es una carpeta de biblioteca del sistema</translation>
    </message>
    <message>
        <source>it may not be removed and is in no library folder</source>
        <translation>no se puede eliminar ni está en una carpeta de biblioteca</translation>
    </message>
    <message>
        <source>yes</source>
        <translation>sí</translation>
    </message>
    <message>
        <source>no</source>
        <translation>no</translation>
    </message>
    <message>
        <source>none</source>
        <translation>ninguno</translation>
    </message>
    <message>
        <source>What it is</source>
        <translation>Qué es</translation>
    </message>
    <message>
        <source>Safe to remove</source>
        <translation>Eliminación permitida</translation>
    </message>
    <message>
        <source>To be searched</source>
        <translation>Examen permitido</translation>
    </message>
    <message>
        <source>You may read it</source>
        <translation>Usted puede leerlo</translation>
    </message>
    <message>
        <source>You may write it</source>
        <translation>Usted puede escribirlo</translation>
    </message>
    <message>
        <source>You may remove it</source>
        <translation>Usted puede eliminarlo</translation>
    </message>
    <message>
        <source>With all inside</source>
        <translation>Con todo su contenido</translation>
    </message>
    <message>
        <source>Application</source>
        <translation>Aplicación</translation>
    </message>
    <message>
        <source>Language folder</source>
        <translation>Carpeta de idioma</translation>
    </message>
    <message>
        <source>Disk</source>
        <translation>Disco</translation>
    </message>
    <message>
        <source>the system does not tell its memory</source>
        <translation>el sistema no informa de su memoria</translation>
    </message>
    <message>
        <source>Memory</source>
        <translation>Memoria</translation>
    </message>
    <message>
        <source>Cleaning the memory</source>
        <translation>Limpiando la memoria</translation>
    </message>
    <message>
        <source>the purger cannot be started: %1</source>
        <translation>no se puede iniciar el programa de limpieza: %1</translation>
    </message>
    <message>
        <source>Freed %1.</source>
        <translation>Se liberaron %1.</translation>
    </message>
    <message>
        <source>The time is over; %1 were freed.</source>
        <translation>Se acabó el tiempo; se liberaron %1.</translation>
    </message>
    <message>
        <source>Stopped; %1 were freed.</source>
        <translation>Detenido; se liberaron %1.</translation>
    </message>
    <message>
        <source>on, true, yes, 1, or off, false, no, 0</source>
        <translation>on, true, yes, 1 u off, false, no, 0</translation>
    </message>
    <message>
        <source>on</source>
        <translation>activado</translation>
    </message>
    <message>
        <source>off</source>
        <translation>desactivado</translation>
    </message>
    <message>
        <source>bytes, or a size such as &quot;500 MB&quot; or &quot;2 GB&quot;</source>
        <translation>bytes o un tamaño como &quot;500 MB&quot; o &quot;2 GB&quot;</translation>
    </message>
    <message>
        <source>a part of the memory between 0 and 1, such as 0.05, or a percentage such as 5%</source>
        <translation>una parte de la memoria entre 0 y 1, como 0.05, o un porcentaje como 5%</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>a date such as 2026-01-31, or none</source>
        <translation>una fecha como 2026-01-31, o none</translation>
    </message>
    <message>
        <source>%1 (no period)</source>
        <translation>%1 (no es un periodo)</translation>
    </message>
    <message>
        <source>a path that begins with /</source>
        <translation>una ruta que empieza con /</translation>
    </message>
    <message>
        <source>a URL such as https://example.org/help</source>
        <translation>una URL como https://example.org/help</translation>
    </message>
    <message>
        <source>there is no setting %1; &quot;settings list&quot; names them</source>
        <translation>no existe el ajuste %1; &quot;settings list&quot; los enumera</translation>
    </message>
    <message>
        <source>the settings cannot be written: %1</source>
        <translation>no se pueden escribir los ajustes: %1</translation>
    </message>
    <message>
        <source>No reminder.</source>
        <translation>Ningún recordatorio.</translation>
    </message>
    <message>
        <source>Next reminder: %1, counted from %2.</source>
        <translation>Próximo recordatorio: %1, contado desde %2.</translation>
    </message>
    <message>
        <source>Setting</source>
        <translation>Ajuste</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Valor</translation>
    </message>
    <message>
        <source>Default</source>
        <translation>Predeterminado</translation>
    </message>
    <message>
        <source>%1 is no value for %2, which takes %3</source>
        <translation>%1 no es un valor para %2, que admite %3</translation>
    </message>
    <message>
        <source>name a setting, or all of them with --all</source>
        <translation>indique un ajuste, o todos con --all</translation>
    </message>
    <message>
        <source>Set all settings back to their defaults?</source>
        <translation>¿Devolver todos los ajustes a sus valores predeterminados?</translation>
    </message>
    <message>
        <source>nothing was changed; --yes needs no answer</source>
        <translation>no se cambió nada; --yes no necesita respuesta</translation>
    </message>
    <message>
        <source>a frequency is written like &quot;800 MHz&quot; or &quot;2.4 GHz&quot;</source>
        <translation>una frecuencia se escribe como &quot;800 MHz&quot; o &quot;2.4 GHz&quot;</translation>
    </message>
    <message>
        <source>a size is written like &quot;12 bytes&quot;, &quot;1.5 KB&quot;, &quot;20 MB&quot; or &quot;2 GB&quot;</source>
        <translation>un tamaño se escribe como &quot;12 bytes&quot;, &quot;1.5 KB&quot;, &quot;20 MB&quot; o &quot;2 GB&quot;</translation>
    </message>
    <message>
        <source>not a whole number of 64 bits: %1</source>
        <translation>no es un número entero de 64 bits: %1</translation>
    </message>
    <message>
        <source>missing: %1</source>
        <translation>falta: %1</translation>
    </message>
    <message>
        <source>Purger</source>
        <translation>Limpiador</translation>
    </message>
    <message>
        <source>Disk tool</source>
        <translation>Herramienta de discos</translation>
    </message>
    <message>
        <source>Firewall tool</source>
        <translation>Herramienta del cortafuegos</translation>
    </message>
    <message>
        <source>%1: %2 %</source>
        <translation>%1: %2 %</translation>
    </message>
    <message>
        <source>[yes/no]</source>
        <translation>[sí/no]</translation>
    </message>
    <message>
        <source>the scheduler answered: %1</source>
        <translation>el planificador ha respondido: %1</translation>
    </message>
    <message>
        <source>the scheduler has gone</source>
        <translation>el planificador ya no está</translation>
    </message>
    <message>
        <source>there are no notices</source>
        <translation>no hay avisos</translation>
    </message>
    <message>
        <source>there is no notice %1</source>
        <translation>no hay ningún aviso %1</translation>
    </message>
    <message>
        <source>there is no scheduler on the bus %1</source>
        <translation>no hay ningún planificador en el bus %1</translation>
    </message>
    <message>
        <source>the scheduler has not answered</source>
        <translation>el planificador no ha respondido</translation>
    </message>
    <message>
        <source>waiting for the scheduler</source>
        <translation>esperando al planificador</translation>
    </message>
    <message>
        <source>another scheduler of this user keeps its notices in %1</source>
        <translation>otro planificador de este usuario guarda sus avisos en %1</translation>
    </message>
    <message>
        <source>would tell: %1</source>
        <translation>avisaría: %1</translation>
    </message>
    <message>
        <source>there is nothing to tell</source>
        <translation>no hay nada que avisar</translation>
    </message>
    <message>
        <source>cannot read %1: %2; notices will not outlive this process</source>
        <translation>no se puede leer %1: %2; los avisos se perderán con este proceso</translation>
    </message>
    <message>
        <source>the state in %1 is damaged; it is kept as %2</source>
        <translation>el estado en %1 está dañado; se conserva como %2</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>no se puede escribir %1: %2</translation>
    </message>
    <message>
        <source>cannot look into the trash %1: %2</source>
        <translation>no se puede mirar en la papelera %1: %2</translation>
    </message>
    <message>
        <source>the trash holds %1, more than %2</source>
        <translation>la papelera contiene %1, más de %2</translation>
    </message>
    <message>
        <source>%1 are free on the disk of %2, less than %3</source>
        <translation>en el disco de %2 hay %1 libres, menos de %3</translation>
    </message>
    <message>
        <source>%1 of memory are free, less than %2</source>
        <translation>hay %1 de memoria libres, menos de %2</translation>
    </message>
    <message>
        <source>the application %1 has been removed from %2 and may have left files behind</source>
        <translation>la aplicación %1 se ha eliminado de %2 y puede haber dejado archivos</translation>
    </message>
    <message>
        <source>the regular maintenance has been due since %1</source>
        <translation>el mantenimiento periódico está pendiente desde el %1</translation>
    </message>
    <message>
        <source>there is no firewall tool on this machine</source>
        <translation>no hay herramienta de cortafuegos en este equipo</translation>
    </message>
    <message>
        <source>Firewall: %1</source>
        <translation>Cortafuegos: %1</translation>
    </message>
    <message>
        <source>Block all connections: %1</source>
        <translation>Bloquear todas las conexiones: %1</translation>
    </message>
    <message>
        <source>Allow signed software: %1</source>
        <translation>Permitir software firmado: %1</translation>
    </message>
    <message>
        <source>Stealth mode: %1</source>
        <translation>Modo encubierto: %1</translation>
    </message>
    <message>
        <source>Applications: %1</source>
        <translation>Aplicaciones: %1</translation>
    </message>
    <message>
        <source>the firewall does not take this step: %1</source>
        <translation>el cortafuegos no acepta este paso: %1</translation>
    </message>
    <message>
        <source>nothing is changed: the administrator&apos;s authorisation was not given</source>
        <translation>no se ha cambiado nada: no se dio la autorización del administrador</translation>
    </message>
    <message>
        <source>nothing is changed: the firewall&apos;s script could not be run</source>
        <translation>no se ha cambiado nada: no se pudo ejecutar el script del cortafuegos</translation>
    </message>
    <message>
        <source>saved</source>
        <translation>guardado</translation>
    </message>
    <message>
        <source>the firewall is not as it should be; what is missing:</source>
        <translation>el cortafuegos no está como debería; falta:</translation>
    </message>
    <message>
        <source>nothing to do: the firewall is like that already</source>
        <translation>nada que hacer: el cortafuegos ya está así</translation>
    </message>
    <message>
        <source>%1 is not an application: a folder whose name ends with .app is wanted</source>
        <translation>%1 no es una aplicación: se necesita una carpeta cuyo nombre termine en .app</translation>
    </message>
    <message>
        <source>%1 is not in the firewall&apos;s list</source>
        <translation>%1 no está en la lista del cortafuegos</translation>
    </message>
    <message>
        <source>%1 is not in the firewall&apos;s list; add it first</source>
        <translation>%1 no está en la lista del cortafuegos; añádala primero</translation>
    </message>
    <message>
        <source>contradictory orders for %1</source>
        <translation>órdenes contradictorias para %1</translation>
    </message>
    <message>
        <source>missing</source>
        <translation>no está</translation>
    </message>
    <message>
        <source>%1 (a stand-in)</source>
        <translation>%1 (un sustituto)</translation>
    </message>
    <message>
        <source>%1 was damaged; it is kept with &quot;.damaged&quot; after its name</source>
        <translation>%1 estaba dañado; se conserva con «.damaged» al final del nombre</translation>
    </message>
    <message>
        <source>%1 (stored: %2)</source>
        <translation>%1 (almacenado: %2)</translation>
    </message>
    <message>
        <source>%1 is damaged; the next change keeps it with &quot;.damaged&quot; after its name</source>
        <translation>%1 está dañado; el próximo cambio lo conserva con «.damaged» al final del nombre</translation>
    </message>
    <message>
        <source>the settings were damaged; what they were is in %1</source>
        <translation>los ajustes estaban dañados; su contenido anterior está en %1</translation>
    </message>
    <message>
        <source>%1 is stored as %2, which is not a value for it</source>
        <translation>%1 está almacenado como %2, que no es un valor válido</translation>
    </message>
    <message>
        <source>--state: %1 is a folder; name a file</source>
        <translation>--state: %1 es una carpeta; indique un archivo</translation>
    </message>
    <message>
        <source>--trash: %1 does not exist; it counts as empty</source>
        <translation>--trash: %1 no existe; se considera vacía</translation>
    </message>
    <message>
        <source>%1 must be a regular file, for it is the scheduler&apos;s lock; remove it</source>
        <translation>%1 debe ser un archivo normal, pues es el bloqueo del planificador; elimínelo</translation>
    </message>
    <message>
        <source>cannot lock %1: %2</source>
        <translation>no se puede bloquear %1: %2</translation>
    </message>
    <message>
        <source>the state in %1 is damaged and cannot be renamed: %2; notices will not outlive this process</source>
        <translation>el estado en %1 está dañado y no se puede cambiar de nombre: %2; los avisos no sobrevivirán a este proceso</translation>
    </message>
    <message>
        <source>cannot look at the disk of %1: %2</source>
        <translation>no se puede mirar el disco de %1: %2</translation>
    </message>
    <message>
        <source>cannot look for applications in %1</source>
        <translation>no se pueden buscar aplicaciones en %1</translation>
    </message>
    <message>
        <source>%1 is not a setting; the keys are enabled, block-all, allow-signed and stealth, the values on and off</source>
        <translation>%1 no es un ajuste; las claves son enabled, block-all, allow-signed y stealth, y los valores on y off</translation>
    </message>
    <message>
        <source>%1 must not be set both on and off</source>
        <translation>%1 no se puede activar y desactivar a la vez</translation>
    </message>
    <message>
        <source>the name of the socket of the bus %1 has %2 bytes, more than the possible %3: %4; set TMPDIR to a folder with a shorter name</source>
        <translation>el nombre del socket del bus %1 tiene %2 bytes, más de los %3 posibles: %4; asigne a TMPDIR una carpeta con un nombre más corto</translation>
    </message>
    <message>
        <source>the temporary folder %1 cannot be used: %2; set TMPDIR to a folder of your own</source>
        <translation>la carpeta temporal %1 no se puede usar: %2; asigne a TMPDIR una carpeta propia</translation>
    </message>
    <message>
        <source>a folder is in the place of the socket of the bus %1: %2; remove it</source>
        <translation>en el lugar del socket del bus %1 hay una carpeta: %2; elimínela</translation>
    </message>
    <message>
        <source>the socket of the bus %1 belongs to the user with the number %2: %3; set TMPDIR to a folder of your own</source>
        <translation>el socket del bus %1 pertenece al usuario número %2: %3; asigne a TMPDIR una carpeta propia</translation>
    </message>
    <message>
        <source>%1 lines were dropped because the output was not read</source>
        <translation>se han descartado %1 líneas porque no se leía la salida</translation>
    </message>
    <message>
        <source>the end of the output was not read</source>
        <translation>el final de la salida no se ha leído</translation>
    </message>
</context>
<context>
    <name>Tavrik::Ostrel::DaemonSettings</name>
    <message>
        <source>Weekly</source>
        <translation>Cada semana</translation>
    </message>
    <message>
        <source>Once in two weeks</source>
        <translation>Cada dos semanas</translation>
    </message>
    <message>
        <source>Monthly</source>
        <translation>Cada mes</translation>
    </message>
    <message>
        <source>Once in three months</source>
        <translation>Cada tres meses</translation>
    </message>
    <message>
        <source>Once in six months</source>
        <translation>Cada seis meses</translation>
    </message>
    <message>
        <source>Annualy</source>
        <translation>Cada año</translation>
    </message>
</context>
</TS>

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

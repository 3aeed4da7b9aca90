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
        <source>there is no firewall tool on this machine</source>
        <translation>no hay herramienta de cortafuegos en este equipo</translation>
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

<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru" sourcelanguage="en">
<context>
    <name>FormatText</name>
    <message>
        <source>%1 bytes</source>
        <translation>%1 байт</translation>
    </message>
    <message>
        <source>%1 kB</source>
        <translation>%1 кБ</translation>
    </message>
    <message>
        <source>%1 MB</source>
        <translation>%1 МБ</translation>
    </message>
    <message>
        <source>%1 GB</source>
        <translation>%1 ГБ</translation>
    </message>
    <message>
        <source>%1 MHz</source>
        <translation>%1 МГц</translation>
    </message>
    <message>
        <source>%1 GHz</source>
        <translation>%1 ГГц</translation>
    </message>
</context>
<context>
    <name>Ostrel</name>
    <message>
        <source>%1 bytes</source>
        <translation>%1 байт</translation>
    </message>
    <message>
        <source>no result came for the message to %1</source>
        <translation>результат сообщения для %1 не пришёл</translation>
    </message>
    <message>
        <source>listening as %1 on the bus %2</source>
        <translation>слушаю под именем %1 на шине %2</translation>
    </message>
    <message>
        <source>%1 has not come</source>
        <translation>%1 не появляется</translation>
    </message>
    <message>
        <source>%1 could not join the bus %2 within %3 s: the name is taken or the server does not answer</source>
        <translation>%1 не удалось присоединиться к шине %2 за %3 с: имя занято или сервер не отвечает</translation>
    </message>
    <message>
        <source>nobody serves the bus %1</source>
        <translation>шину %1 никто не обслуживает</translation>
    </message>
    <message>
        <source>the name %1 is taken on the bus %2</source>
        <translation>имя %1 на шине %2 занято</translation>
    </message>
    <message>
        <source>the server of the bus %1 has gone</source>
        <translation>сервер шины %1 исчез</translation>
    </message>
    <message>
        <source>a process that cannot be seen from here</source>
        <translation>процесс, который отсюда не виден</translation>
    </message>
    <message>
        <source>process %1</source>
        <translation>процесс %1</translation>
    </message>
    <message>
        <source>%1 (process %2)</source>
        <translation>%1 (процесс %2)</translation>
    </message>
    <message>
        <source>The bus %1 is served by %2. Its members: %3.</source>
        <translation>Сервер шины %1: %2. Участники: %3.</translation>
    </message>
    <message>
        <source>The system refuses the connection to the bus %1 at %2: %3.</source>
        <translation>Система не даёт подключиться к шине %1 по адресу %2: %3.</translation>
    </message>
    <message>
        <source>Nobody serves the bus %1: there is no socket %2.</source>
        <translation>Шину %1 никто не обслуживает: сокета %2 нет.</translation>
    </message>
    <message>
        <source>The name %1 is taken on the bus %2, which is served by %3.</source>
        <translation>Имя %1 занято на шине %2, её сервер: %3.</translation>
    </message>
    <message>
        <source>The server of the bus %1 does not answer: %2. It may be stopped or busy.</source>
        <translation>Сервер шины %1 не отвечает: %2. Возможно, он остановлен или занят.</translation>
    </message>
    <message>
        <source>A process that is joining the bus %1 keeps all others out: it holds %2.lock. It may be stopped or busy.</source>
        <translation>Процесс, который присоединяется к шине %1, не пускает остальных: он держит %2.lock. Возможно, он остановлен или занят.</translation>
    </message>
    <message>
        <source>Nobody serves the bus %1: a server that has gone left the socket %2 behind. The next process that may serve clears it away.</source>
        <translation>Шину %1 никто не обслуживает: исчезнувший сервер оставил сокет %2. Его уберёт следующий процесс, которому можно стать сервером.</translation>
    </message>
    <message>
        <source>A file that is no socket is where the socket of the bus %1 belongs. Remove it: %2.</source>
        <translation>На месте сокета шины %1 лежит файл, который не сокет. Удалите его: %2.</translation>
    </message>
    <message>
        <source>A folder is where the socket of the bus %1 belongs. Remove it: %2.</source>
        <translation>На месте сокета шины %1 лежит папка. Удалите её: %2.</translation>
    </message>
    <message>
        <source>A link to %1 is where the socket of the bus %2 belongs. Remove it: %3.</source>
        <translation>На месте сокета шины %2 лежит ссылка на %1. Удалите её: %3.</translation>
    </message>
    <message>
        <source>The socket of the bus %1 belongs to the user with the number %2: %3. Set TMPDIR to a folder of your own.</source>
        <translation>Сокет шины %1 принадлежит пользователю с номером %2: %3. Укажите в TMPDIR собственную папку.</translation>
    </message>
    <message>
        <source>The name of the socket of the bus %1 has %2 bytes, and no more than %3 are possible: %4. Set TMPDIR to a folder with a shorter name.</source>
        <translation>Имя сокета шины %1 занимает %2 байт, а возможно не более %3: %4. Укажите в TMPDIR папку с более коротким именем.</translation>
    </message>
    <message>
        <source>The bus %1 is served in another temporary folder, %2, by %3. This process looks in %4. TMPDIR must be the same for both.</source>
        <translation>Шина %1 находится в другой временной папке, %2, её сервер: %3. Этот процесс ищет в %4. TMPDIR должна быть одинаковой у обоих.</translation>
    </message>
    <message>
        <source>The bus %1 is served by %2, but its socket %3 has been removed: who comes now does not find it. Start that process again.</source>
        <translation>Сервер шины %1: %2, но её сокет %3 удалён, и новые участники её не найдут. Перезапустите этот процесс.</translation>
    </message>
    <message>
        <source>The temporary folder %1 cannot be used: %2.</source>
        <translation>Временную папку %1 нельзя использовать: %2.</translation>
    </message>
    <message>
        <source>%1 listens on the socket of the bus %2 but does not speak its language: %3.</source>
        <translation>На сокете шины %2 отвечает %1, но не на её языке: %3.</translation>
    </message>
    <message>
        <source>Another bus of this name is served in the temporary folder %1 by %2.</source>
        <translation>Другая шина с этим именем находится во временной папке %1, её сервер: %2.</translation>
    </message>
    <message>
        <source>cannot write to the standard output: %1</source>
        <translation>не удаётся писать в стандартный вывод: %1</translation>
    </message>
    <message>
        <source>the message is longer than %1 bytes</source>
        <translation>сообщение длиннее %1 байт</translation>
    </message>
    <message>
        <source>cannot read %1: %2</source>
        <translation>не удаётся прочитать %1: %2</translation>
    </message>
    <message>
        <source>the standard input</source>
        <translation>стандартный ввод</translation>
    </message>
    <message>
        <source>a line to say is too long</source>
        <translation>строка сообщения слишком длинная</translation>
    </message>
    <message>
        <source>cannot say a line that does not begin with a name: %1</source>
        <translation>нельзя сказать строку, которая не начинается с имени: %1</translation>
    </message>
    <message>
        <source>there is no firewall tool on this machine</source>
        <translation>на этом компьютере нет инструмента брандмауэра</translation>
    </message>
    <message>
        <source>on</source>
        <translation>вкл.</translation>
    </message>
    <message>
        <source>off</source>
        <translation>выкл.</translation>
    </message>
    <message>
        <source>Firewall: %1</source>
        <translation>Брандмауэр: %1</translation>
    </message>
    <message>
        <source>Block all connections: %1</source>
        <translation>Блокировать все подключения: %1</translation>
    </message>
    <message>
        <source>Allow signed software: %1</source>
        <translation>Разрешать подписанные программы: %1</translation>
    </message>
    <message>
        <source>Stealth mode: %1</source>
        <translation>Режим невидимости: %1</translation>
    </message>
    <message>
        <source>Applications: %1</source>
        <translation>Программы: %1</translation>
    </message>
    <message>
        <source>the firewall does not take this step: %1</source>
        <translation>брандмауэр не принимает этот шаг: %1</translation>
    </message>
    <message>
        <source>nothing is changed: the administrator&apos;s authorisation was not given</source>
        <translation>ничего не изменено: разрешение администратора не получено</translation>
    </message>
    <message>
        <source>nothing is changed: the firewall&apos;s script could not be run</source>
        <translation>ничего не изменено: не удалось запустить сценарий брандмауэра</translation>
    </message>
    <message>
        <source>saved</source>
        <translation>сохранено</translation>
    </message>
    <message>
        <source>the firewall is not as it should be; what is missing:</source>
        <translation>состояние брандмауэра не такое, как требуется; не хватает:</translation>
    </message>
    <message>
        <source>nothing to do: the firewall is like that already</source>
        <translation>делать нечего: брандмауэр уже в таком состоянии</translation>
    </message>
    <message>
        <source>%1 is not an application: a folder whose name ends with .app is wanted</source>
        <translation>%1 — не программа: нужна папка, имя которой оканчивается на .app</translation>
    </message>
    <message>
        <source>%1 is not in the firewall&apos;s list</source>
        <translation>%1 нет в списке брандмауэра</translation>
    </message>
    <message>
        <source>%1 is not in the firewall&apos;s list; add it first</source>
        <translation>%1 нет в списке брандмауэра; сначала добавьте</translation>
    </message>
    <message>
        <source>contradictory orders for %1</source>
        <translation>противоречивые указания для %1</translation>
    </message>
</context>
<context>
    <name>Tavrik::Ostrel::DaemonSettings</name>
    <message>
        <source>Weekly</source>
        <translation>Еженедельно</translation>
    </message>
    <message>
        <source>Once in two weeks</source>
        <translation>Раз в две недели</translation>
    </message>
    <message>
        <source>Monthly</source>
        <translation>Ежемесячно</translation>
    </message>
    <message>
        <source>Once in three months</source>
        <translation>Раз в три месяца</translation>
    </message>
    <message>
        <source>Once in six months</source>
        <translation>Раз в полгода</translation>
    </message>
    <message>
        <source>Annualy</source>
        <translation>Ежегодно</translation>
    </message>
</context>
</TS>

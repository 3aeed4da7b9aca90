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
        <source>unknown</source>
        <translation>неизвестно</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Имя</translation>
    </message>
    <message>
        <source>Mounted at</source>
        <translation>Подключён в</translation>
    </message>
    <message>
        <source>Total</source>
        <translation>Всего</translation>
    </message>
    <message>
        <source>Free</source>
        <translation>Свободно</translation>
    </message>
    <message>
        <source>Used</source>
        <translation>Занято</translation>
    </message>
    <message>
        <source>the disk tool diskutil is missing; it comes with macOS and is looked for in PATH</source>
        <translation>нет дисковой утилиты diskutil; она входит в macOS, и её ищут в PATH</translation>
    </message>
    <message>
        <source>diskutil tells of no mounted disk</source>
        <translation>diskutil не называет подключённых дисков</translation>
    </message>
    <message>
        <source>there is no %1</source>
        <translation>%1 не существует</translation>
    </message>
    <message>
        <source>no disk holds %1</source>
        <translation>ни один диск не содержит %1</translation>
    </message>
    <message>
        <source>not UTF-8: %1</source>
        <translation>не UTF-8: %1</translation>
    </message>
    <message>
        <source>the path is no text in this locale: %1</source>
        <translation>в этой локали путь не является текстом: %1</translation>
    </message>
    <message>
        <source>a file</source>
        <translation>файл</translation>
    </message>
    <message>
        <source>a folder</source>
        <translation>папка</translation>
    </message>
    <message>
        <source>a link</source>
        <translation>ссылка</translation>
    </message>
    <message>
        <source>a link to nothing</source>
        <translation>ссылка в никуда</translation>
    </message>
    <message>
        <source>neither file nor folder</source>
        <translation>ни файл, ни папка</translation>
    </message>
    <message>
        <source>not there</source>
        <translation>отсутствует</translation>
    </message>
    <message>
        <source>the path does not begin with /</source>
        <translation>путь не начинается с /</translation>
    </message>
    <message>
        <source>a component of the path is &quot;..&quot;</source>
        <translation>один из элементов пути — &quot;..&quot;</translation>
    </message>
    <message>
        <source>language folders may be removed anywhere</source>
        <translation>языковые папки можно удалять везде</translation>
    </message>
    <message>
        <source>%1 may be cleaned</source>
        <translation>%1 можно очищать</translation>
    </message>
    <message>
        <source>it is on a writable volume</source>
        <translation>он на томе, доступном для записи</translation>
    </message>
    <message>
        <source>under /Volumes only what exists may be removed</source>
        <translation>в /Volumes можно удалять только существующее</translation>
    </message>
    <message>
        <source>no writable volume holds it</source>
        <translation>ни один том, доступный для записи, его не содержит</translation>
    </message>
    <message>
        <source>it lies in no folder that may be cleaned</source>
        <translation>он не лежит в папке, которую можно очищать</translation>
    </message>
    <message>
        <source>what may be removed may be searched</source>
        <translation>что можно удалить, то можно и просматривать</translation>
    </message>
    <message>
        <source>%1 is a library folder of the system</source>
        <translation>%1 — системная папка библиотек</translation>
    </message>
    <message>
        <source>it may not be removed and is in no library folder</source>
        <translation>его нельзя удалить, и он не в папке библиотек</translation>
    </message>
    <message>
        <source>yes</source>
        <translation>да</translation>
    </message>
    <message>
        <source>no</source>
        <translation>нет</translation>
    </message>
    <message>
        <source>none</source>
        <translation>нет</translation>
    </message>
    <message>
        <source>What it is</source>
        <translation>Что это</translation>
    </message>
    <message>
        <source>Safe to remove</source>
        <translation>Удалять можно</translation>
    </message>
    <message>
        <source>To be searched</source>
        <translation>Просматривать можно</translation>
    </message>
    <message>
        <source>You may read it</source>
        <translation>Вы можете читать</translation>
    </message>
    <message>
        <source>You may write it</source>
        <translation>Вы можете писать</translation>
    </message>
    <message>
        <source>You may remove it</source>
        <translation>Вы можете удалить</translation>
    </message>
    <message>
        <source>With all inside</source>
        <translation>Со всем содержимым</translation>
    </message>
    <message>
        <source>Application</source>
        <translation>Приложение</translation>
    </message>
    <message>
        <source>Language folder</source>
        <translation>Языковая папка</translation>
    </message>
    <message>
        <source>Disk</source>
        <translation>Диск</translation>
    </message>
    <message>
        <source>the system does not tell its memory</source>
        <translation>система не сообщает о памяти</translation>
    </message>
    <message>
        <source>Memory</source>
        <translation>Память</translation>
    </message>
    <message>
        <source>Cleaning the memory</source>
        <translation>Очистка памяти</translation>
    </message>
    <message>
        <source>the purger cannot be started: %1</source>
        <translation>не удаётся запустить программу очистки: %1</translation>
    </message>
    <message>
        <source>Freed %1.</source>
        <translation>Освобождено: %1.</translation>
    </message>
    <message>
        <source>The time is over; %1 were freed.</source>
        <translation>Время вышло; освобождено: %1.</translation>
    </message>
    <message>
        <source>Stopped; %1 were freed.</source>
        <translation>Остановлено; освобождено: %1.</translation>
    </message>
    <message>
        <source>on, true, yes, 1, or off, false, no, 0</source>
        <translation>on, true, yes, 1 или off, false, no, 0</translation>
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
        <source>bytes, or a size such as &quot;500 MB&quot; or &quot;2 GB&quot;</source>
        <translation>байты или размер, например &quot;500 MB&quot; или &quot;2 GB&quot;</translation>
    </message>
    <message>
        <source>a part of the memory between 0 and 1, such as 0.05, or a percentage such as 5%</source>
        <translation>долю памяти от 0 до 1, например 0.05, или процент, например 5%</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>a date such as 2026-01-31, or none</source>
        <translation>дату, например 2026-01-31, или none</translation>
    </message>
    <message>
        <source>%1 (no period)</source>
        <translation>%1 (не период)</translation>
    </message>
    <message>
        <source>a path that begins with /</source>
        <translation>путь, который начинается с /</translation>
    </message>
    <message>
        <source>a URL such as https://example.org/help</source>
        <translation>URL, например https://example.org/help</translation>
    </message>
    <message>
        <source>there is no setting %1; &quot;settings list&quot; names them</source>
        <translation>настройки %1 нет; их перечисляет &quot;settings list&quot;</translation>
    </message>
    <message>
        <source>the settings cannot be written: %1</source>
        <translation>не удаётся записать настройки: %1</translation>
    </message>
    <message>
        <source>No reminder.</source>
        <translation>Напоминаний нет.</translation>
    </message>
    <message>
        <source>Next reminder: %1, counted from %2.</source>
        <translation>Следующее напоминание: %1, считая от %2.</translation>
    </message>
    <message>
        <source>Setting</source>
        <translation>Настройка</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Значение</translation>
    </message>
    <message>
        <source>Default</source>
        <translation>По умолчанию</translation>
    </message>
    <message>
        <source>%1 is no value for %2, which takes %3</source>
        <translation>%1 — не значение для %2; допустимо: %3</translation>
    </message>
    <message>
        <source>name a setting, or all of them with --all</source>
        <translation>назовите настройку или все с помощью --all</translation>
    </message>
    <message>
        <source>Set all settings back to their defaults?</source>
        <translation>Вернуть всем настройкам значения по умолчанию?</translation>
    </message>
    <message>
        <source>nothing was changed; --yes needs no answer</source>
        <translation>ничего не изменено; с --yes ответ не нужен</translation>
    </message>
    <message>
        <source>a frequency is written like &quot;800 MHz&quot; or &quot;2.4 GHz&quot;</source>
        <translation>частоту пишут как &quot;800 MHz&quot; или &quot;2.4 GHz&quot;</translation>
    </message>
    <message>
        <source>a size is written like &quot;12 bytes&quot;, &quot;1.5 KB&quot;, &quot;20 MB&quot; or &quot;2 GB&quot;</source>
        <translation>размер пишут как &quot;12 bytes&quot;, &quot;1.5 KB&quot;, &quot;20 MB&quot; или &quot;2 GB&quot;</translation>
    </message>
    <message>
        <source>not a whole number of 64 bits: %1</source>
        <translation>не целое 64-битное число: %1</translation>
    </message>
    <message>
        <source>missing: %1</source>
        <translation>отсутствует: %1</translation>
    </message>
    <message>
        <source>Purger</source>
        <translation>Очистка</translation>
    </message>
    <message>
        <source>Disk tool</source>
        <translation>Дисковая утилита</translation>
    </message>
    <message>
        <source>Firewall tool</source>
        <translation>Утилита брандмауэра</translation>
    </message>
    <message>
        <source>%1: %2 %</source>
        <translation>%1: %2 %</translation>
    </message>
    <message>
        <source>[yes/no]</source>
        <translation>[да/нет]</translation>
    </message>
    <message>
        <source>the scheduler answered: %1</source>
        <translation>планировщик ответил: %1</translation>
    </message>
    <message>
        <source>the scheduler has gone</source>
        <translation>планировщик ушёл</translation>
    </message>
    <message>
        <source>there are no notices</source>
        <translation>уведомлений нет</translation>
    </message>
    <message>
        <source>there is no notice %1</source>
        <translation>уведомления %1 нет</translation>
    </message>
    <message>
        <source>there is no scheduler on the bus %1</source>
        <translation>на шине %1 нет планировщика</translation>
    </message>
    <message>
        <source>the scheduler has not answered</source>
        <translation>планировщик не ответил</translation>
    </message>
    <message>
        <source>waiting for the scheduler</source>
        <translation>ожидание планировщика</translation>
    </message>
    <message>
        <source>another scheduler of this user keeps its notices in %1</source>
        <translation>другой планировщик этого пользователя хранит свои уведомления в %1</translation>
    </message>
    <message>
        <source>would tell: %1</source>
        <translation>сообщил бы: %1</translation>
    </message>
    <message>
        <source>there is nothing to tell</source>
        <translation>сообщать не о чем</translation>
    </message>
    <message>
        <source>cannot read %1: %2; notices will not outlive this process</source>
        <translation>не удаётся прочитать %1: %2; уведомления пропадут вместе с этим процессом</translation>
    </message>
    <message>
        <source>the state in %1 is damaged; it is kept as %2</source>
        <translation>состояние в %1 повреждено; оно сохранено как %2</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>не удаётся записать %1: %2</translation>
    </message>
    <message>
        <source>cannot look into the trash %1: %2</source>
        <translation>не удаётся заглянуть в корзину %1: %2</translation>
    </message>
    <message>
        <source>the trash holds %1, more than %2</source>
        <translation>в корзине %1, больше %2</translation>
    </message>
    <message>
        <source>%1 are free on the disk of %2, less than %3</source>
        <translation>на диске с %2 свободно %1, меньше %3</translation>
    </message>
    <message>
        <source>%1 of memory are free, less than %2</source>
        <translation>свободно %1 памяти, меньше %2</translation>
    </message>
    <message>
        <source>the application %1 has been removed from %2 and may have left files behind</source>
        <translation>программа %1 удалена из %2; возможно, остались её файлы</translation>
    </message>
    <message>
        <source>the regular maintenance has been due since %1</source>
        <translation>регулярное обслуживание пора провести с %1</translation>
    </message>
    <message>
        <source>there is no firewall tool on this machine</source>
        <translation>на этом компьютере нет инструмента брандмауэра</translation>
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
    <message>
        <source>missing</source>
        <translation>отсутствует</translation>
    </message>
    <message>
        <source>%1 (a stand-in)</source>
        <translation>%1 (замена)</translation>
    </message>
    <message>
        <source>%1 was damaged; it is kept with &quot;.damaged&quot; after its name</source>
        <translation>файл %1 был повреждён; он сохранён с «.damaged» в конце имени</translation>
    </message>
    <message>
        <source>%1 (stored: %2)</source>
        <translation>%1 (записано: %2)</translation>
    </message>
    <message>
        <source>%1 is damaged; the next change keeps it with &quot;.damaged&quot; after its name</source>
        <translation>файл %1 повреждён; при следующем изменении он будет сохранён с «.damaged» в конце имени</translation>
    </message>
    <message>
        <source>the settings were damaged; what they were is in %1</source>
        <translation>настройки были повреждены; их прежнее содержимое находится в %1</translation>
    </message>
    <message>
        <source>%1 is stored as %2, which is not a value for it</source>
        <translation>для %1 записано %2; это недопустимое значение</translation>
    </message>
    <message>
        <source>--state: %1 is a folder; name a file</source>
        <translation>--state: %1 — это папка; укажите файл</translation>
    </message>
    <message>
        <source>--trash: %1 does not exist; it counts as empty</source>
        <translation>--trash: папки %1 не существует; корзина считается пустой</translation>
    </message>
    <message>
        <source>%1 must be a regular file, for it is the scheduler&apos;s lock; remove it</source>
        <translation>%1 должен быть обычным файлом, так как это блокировка планировщика; удалите его</translation>
    </message>
    <message>
        <source>cannot lock %1: %2</source>
        <translation>не удаётся заблокировать %1: %2</translation>
    </message>
    <message>
        <source>the state in %1 is damaged and cannot be renamed: %2; notices will not outlive this process</source>
        <translation>состояние в %1 повреждено, и его не удаётся переименовать: %2; уведомления не переживут этот процесс</translation>
    </message>
    <message>
        <source>cannot look at the disk of %1: %2</source>
        <translation>не удаётся проверить диск %1: %2</translation>
    </message>
    <message>
        <source>cannot look for applications in %1</source>
        <translation>не удаётся искать программы в %1</translation>
    </message>
    <message>
        <source>%1 is not a setting; the keys are enabled, block-all, allow-signed and stealth, the values on and off</source>
        <translation>%1 не является настройкой; ключи: enabled, block-all, allow-signed и stealth, значения: on и off</translation>
    </message>
    <message>
        <source>%1 must not be set both on and off</source>
        <translation>%1 нельзя одновременно включить и выключить</translation>
    </message>
    <message>
        <source>the name of the socket of the bus %1 has %2 bytes, more than the possible %3: %4; set TMPDIR to a folder with a shorter name</source>
        <translation>имя сокета шины %1 занимает %2 байт, больше возможных %3: %4; укажите в TMPDIR папку с более коротким именем</translation>
    </message>
    <message>
        <source>the temporary folder %1 cannot be used: %2; set TMPDIR to a folder of your own</source>
        <translation>временную папку %1 нельзя использовать: %2; укажите в TMPDIR собственную папку</translation>
    </message>
    <message>
        <source>a folder is in the place of the socket of the bus %1: %2; remove it</source>
        <translation>на месте сокета шины %1 лежит папка: %2; удалите её</translation>
    </message>
    <message>
        <source>the socket of the bus %1 belongs to the user with the number %2: %3; set TMPDIR to a folder of your own</source>
        <translation>сокет шины %1 принадлежит пользователю с номером %2: %3; укажите в TMPDIR собственную папку</translation>
    </message>
    <message>
        <source>%1 lines were dropped because the output was not read</source>
        <translation>отброшено строк: %1, так как вывод не читался</translation>
    </message>
    <message>
        <source>the end of the output was not read</source>
        <translation>конец вывода не был прочитан</translation>
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

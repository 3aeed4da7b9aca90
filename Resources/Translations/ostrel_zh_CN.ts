<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>FormatText</name>
    <message>
        <source>%1 bytes</source>
        <translation>%1 字节</translation>
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
        <translation>%1 字节</translation>
    </message>
    <message>
        <source>no result came for the message to %1</source>
        <translation>未收到发给 %1 的消息的结果</translation>
    </message>
    <message>
        <source>listening as %1 on the bus %2</source>
        <translation>正以 %1 的名称在总线 %2 上监听</translation>
    </message>
    <message>
        <source>%1 has not come</source>
        <translation>%1 没有出现</translation>
    </message>
    <message>
        <source>%1 could not join the bus %2 within %3 s: the name is taken or the server does not answer</source>
        <translation>%1 未能在 %3 秒内加入总线 %2：名称已被占用或服务器没有应答</translation>
    </message>
    <message>
        <source>nobody serves the bus %1</source>
        <translation>总线 %1 没有服务者</translation>
    </message>
    <message>
        <source>the name %1 is taken on the bus %2</source>
        <translation>名称 %1 在总线 %2 上已被占用</translation>
    </message>
    <message>
        <source>the server of the bus %1 has gone</source>
        <translation>总线 %1 的服务器已消失</translation>
    </message>
    <message>
        <source>a process that cannot be seen from here</source>
        <translation>此处看不到的进程</translation>
    </message>
    <message>
        <source>process %1</source>
        <translation>进程 %1</translation>
    </message>
    <message>
        <source>%1 (process %2)</source>
        <translation>%1（进程 %2）</translation>
    </message>
    <message>
        <source>The bus %1 is served by %2. Its members: %3.</source>
        <translation>总线 %1 由 %2 提供服务。成员：%3。</translation>
    </message>
    <message>
        <source>The system refuses the connection to the bus %1 at %2: %3.</source>
        <translation>系统拒绝连接到位于 %2 的总线 %1：%3。</translation>
    </message>
    <message>
        <source>Nobody serves the bus %1: there is no socket %2.</source>
        <translation>总线 %1 没有服务者：套接字 %2 不存在。</translation>
    </message>
    <message>
        <source>The name %1 is taken on the bus %2, which is served by %3.</source>
        <translation>名称 %1 在由 %3 提供服务的总线 %2 上已被占用。</translation>
    </message>
    <message>
        <source>The server of the bus %1 does not answer: %2. It may be stopped or busy.</source>
        <translation>总线 %1 的服务器没有应答：%2。它可能已被暂停或正忙。</translation>
    </message>
    <message>
        <source>A process that is joining the bus %1 keeps all others out: it holds %2.lock. It may be stopped or busy.</source>
        <translation>一个正在加入总线 %1 的进程占有 %2.lock，使其他进程无法加入。它可能已被暂停或正忙。</translation>
    </message>
    <message>
        <source>Nobody serves the bus %1: a server that has gone left the socket %2 behind. The next process that may serve clears it away.</source>
        <translation>总线 %1 没有服务者：已消失的服务器遗留了套接字 %2。下一个可以提供服务的进程会将其清除。</translation>
    </message>
    <message>
        <source>A file that is no socket is where the socket of the bus %1 belongs. Remove it: %2.</source>
        <translation>总线 %1 的套接字所在位置是一个非套接字文件。请将其删除：%2。</translation>
    </message>
    <message>
        <source>A folder is where the socket of the bus %1 belongs. Remove it: %2.</source>
        <translation>总线 %1 的套接字所在位置是一个文件夹。请将其删除：%2。</translation>
    </message>
    <message>
        <source>A link to %1 is where the socket of the bus %2 belongs. Remove it: %3.</source>
        <translation>总线 %2 的套接字所在位置是一个指向 %1 的链接。请将其删除：%3。</translation>
    </message>
    <message>
        <source>The socket of the bus %1 belongs to the user with the number %2: %3. Set TMPDIR to a folder of your own.</source>
        <translation>总线 %1 的套接字属于编号为 %2 的用户：%3。请将 TMPDIR 设为您自己的文件夹。</translation>
    </message>
    <message>
        <source>The name of the socket of the bus %1 has %2 bytes, and no more than %3 are possible: %4. Set TMPDIR to a folder with a shorter name.</source>
        <translation>总线 %1 的套接字名称有 %2 字节，而上限为 %3 字节：%4。请将 TMPDIR 设为名称较短的文件夹。</translation>
    </message>
    <message>
        <source>The bus %1 is served in another temporary folder, %2, by %3. This process looks in %4. TMPDIR must be the same for both.</source>
        <translation>总线 %1 在另一个临时文件夹 %2 中由 %3 提供服务。本进程查找的是 %4。两者的 TMPDIR 必须相同。</translation>
    </message>
    <message>
        <source>The bus %1 is served by %2, but its socket %3 has been removed: who comes now does not find it. Start that process again.</source>
        <translation>总线 %1 由 %2 提供服务，但其套接字 %3 已被删除，新来者无法找到它。请重新启动该进程。</translation>
    </message>
    <message>
        <source>The temporary folder %1 cannot be used: %2.</source>
        <translation>临时文件夹 %1 无法使用：%2。</translation>
    </message>
    <message>
        <source>%1 listens on the socket of the bus %2 but does not speak its language: %3.</source>
        <translation>%1 在总线 %2 的套接字上监听，但不使用其语言：%3。</translation>
    </message>
    <message>
        <source>Another bus of this name is served in the temporary folder %1 by %2.</source>
        <translation>另一条同名总线在临时文件夹 %1 中由 %2 提供服务。</translation>
    </message>
    <message>
        <source>cannot write to the standard output: %1</source>
        <translation>无法写入标准输出：%1</translation>
    </message>
    <message>
        <source>the message is longer than %1 bytes</source>
        <translation>消息超过 %1 字节</translation>
    </message>
    <message>
        <source>cannot read %1: %2</source>
        <translation>无法读取 %1：%2</translation>
    </message>
    <message>
        <source>the standard input</source>
        <translation>标准输入</translation>
    </message>
    <message>
        <source>a line to say is too long</source>
        <translation>要发送的一行过长</translation>
    </message>
    <message>
        <source>cannot say a line that does not begin with a name: %1</source>
        <translation>无法发送不以名称开头的行：%1</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>未知</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>Mounted at</source>
        <translation>挂载于</translation>
    </message>
    <message>
        <source>Total</source>
        <translation>总计</translation>
    </message>
    <message>
        <source>Free</source>
        <translation>可用</translation>
    </message>
    <message>
        <source>Used</source>
        <translation>已用</translation>
    </message>
    <message>
        <source>the disk tool diskutil is missing; it comes with macOS and is looked for in PATH</source>
        <translation>缺少磁盘工具 diskutil；它随 macOS 提供，在 PATH 中查找</translation>
    </message>
    <message>
        <source>diskutil tells of no mounted disk</source>
        <translation>diskutil 未列出任何已挂载的磁盘</translation>
    </message>
    <message>
        <source>there is no %1</source>
        <translation>%1 不存在</translation>
    </message>
    <message>
        <source>no disk holds %1</source>
        <translation>没有磁盘包含 %1</translation>
    </message>
    <message>
        <source>not UTF-8: %1</source>
        <translation>不是 UTF-8：%1</translation>
    </message>
    <message>
        <source>the path is no text in this locale: %1</source>
        <translation>在此区域设置下该路径不是文本：%1</translation>
    </message>
    <message>
        <source>a file</source>
        <translation>文件</translation>
    </message>
    <message>
        <source>a folder</source>
        <translation>文件夹</translation>
    </message>
    <message>
        <source>a link</source>
        <translation>链接</translation>
    </message>
    <message>
        <source>a link to nothing</source>
        <translation>失效的链接</translation>
    </message>
    <message>
        <source>neither file nor folder</source>
        <translation>既非文件也非文件夹</translation>
    </message>
    <message>
        <source>not there</source>
        <translation>不存在</translation>
    </message>
    <message>
        <source>the path does not begin with /</source>
        <translation>路径不以 / 开头</translation>
    </message>
    <message>
        <source>a component of the path is &quot;..&quot;</source>
        <translation>路径中有一段是 &quot;..&quot;</translation>
    </message>
    <message>
        <source>language folders may be removed anywhere</source>
        <translation>语言文件夹在任何位置都可以移除</translation>
    </message>
    <message>
        <source>%1 may be cleaned</source>
        <translation>%1 可以清理</translation>
    </message>
    <message>
        <source>it is on a writable volume</source>
        <translation>它位于可写的宗卷上</translation>
    </message>
    <message>
        <source>under /Volumes only what exists may be removed</source>
        <translation>在 /Volumes 下只能移除存在的项目</translation>
    </message>
    <message>
        <source>no writable volume holds it</source>
        <translation>没有可写的宗卷包含它</translation>
    </message>
    <message>
        <source>it lies in no folder that may be cleaned</source>
        <translation>它不在任何可以清理的文件夹中</translation>
    </message>
    <message>
        <source>what may be removed may be searched</source>
        <translation>可以移除的都可以搜索</translation>
    </message>
    <message>
        <source>%1 is a library folder of the system</source>
        <translation>%1 是系统的资源库文件夹</translation>
    </message>
    <message>
        <source>it may not be removed and is in no library folder</source>
        <translation>它不可移除，也不在资源库文件夹中</translation>
    </message>
    <message>
        <source>yes</source>
        <translation>是</translation>
    </message>
    <message>
        <source>no</source>
        <translation>否</translation>
    </message>
    <message>
        <source>none</source>
        <translation>无</translation>
    </message>
    <message>
        <source>What it is</source>
        <translation>类型</translation>
    </message>
    <message>
        <source>Safe to remove</source>
        <translation>可安全移除</translation>
    </message>
    <message>
        <source>To be searched</source>
        <translation>可搜索</translation>
    </message>
    <message>
        <source>You may read it</source>
        <translation>您可读取</translation>
    </message>
    <message>
        <source>You may write it</source>
        <translation>您可写入</translation>
    </message>
    <message>
        <source>You may remove it</source>
        <translation>您可移除</translation>
    </message>
    <message>
        <source>With all inside</source>
        <translation>连同其全部内容</translation>
    </message>
    <message>
        <source>Application</source>
        <translation>应用程序</translation>
    </message>
    <message>
        <source>Language folder</source>
        <translation>语言文件夹</translation>
    </message>
    <message>
        <source>Disk</source>
        <translation>磁盘</translation>
    </message>
    <message>
        <source>the system does not tell its memory</source>
        <translation>系统未提供内存信息</translation>
    </message>
    <message>
        <source>Memory</source>
        <translation>内存</translation>
    </message>
    <message>
        <source>Cleaning the memory</source>
        <translation>正在清理内存</translation>
    </message>
    <message>
        <source>the purger cannot be started: %1</source>
        <translation>无法启动清理程序：%1</translation>
    </message>
    <message>
        <source>Freed %1.</source>
        <translation>已释放 %1。</translation>
    </message>
    <message>
        <source>The time is over; %1 were freed.</source>
        <translation>时间已到；已释放 %1。</translation>
    </message>
    <message>
        <source>Stopped; %1 were freed.</source>
        <translation>已停止；已释放 %1。</translation>
    </message>
    <message>
        <source>on, true, yes, 1, or off, false, no, 0</source>
        <translation>on、true、yes、1 或 off、false、no、0</translation>
    </message>
    <message>
        <source>on</source>
        <translation>开</translation>
    </message>
    <message>
        <source>off</source>
        <translation>关</translation>
    </message>
    <message>
        <source>bytes, or a size such as &quot;500 MB&quot; or &quot;2 GB&quot;</source>
        <translation>字节数，或 &quot;500 MB&quot;、&quot;2 GB&quot; 这样的大小</translation>
    </message>
    <message>
        <source>a part of the memory between 0 and 1, such as 0.05, or a percentage such as 5%</source>
        <translation>0 到 1 之间的内存比例（如 0.05），或百分比（如 5%）</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>a date such as 2026-01-31, or none</source>
        <translation>2026-01-31 这样的日期，或 none</translation>
    </message>
    <message>
        <source>%1 (no period)</source>
        <translation>%1（不是周期）</translation>
    </message>
    <message>
        <source>a path that begins with /</source>
        <translation>以 / 开头的路径</translation>
    </message>
    <message>
        <source>a URL such as https://example.org/help</source>
        <translation>https://example.org/help 这样的 URL</translation>
    </message>
    <message>
        <source>there is no setting %1; &quot;settings list&quot; names them</source>
        <translation>没有设置 %1；&quot;settings list&quot; 会列出全部设置</translation>
    </message>
    <message>
        <source>the settings cannot be written: %1</source>
        <translation>无法写入设置：%1</translation>
    </message>
    <message>
        <source>No reminder.</source>
        <translation>无提醒。</translation>
    </message>
    <message>
        <source>Next reminder: %1, counted from %2.</source>
        <translation>下次提醒：%1，从 %2 算起。</translation>
    </message>
    <message>
        <source>Setting</source>
        <translation>设置</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>值</translation>
    </message>
    <message>
        <source>Default</source>
        <translation>默认值</translation>
    </message>
    <message>
        <source>%1 is no value for %2, which takes %3</source>
        <translation>%1 不是 %2 的值；可用的是：%3</translation>
    </message>
    <message>
        <source>name a setting, or all of them with --all</source>
        <translation>请指定一项设置，或用 --all 指定全部</translation>
    </message>
    <message>
        <source>Set all settings back to their defaults?</source>
        <translation>将所有设置恢复为默认值？</translation>
    </message>
    <message>
        <source>nothing was changed; --yes needs no answer</source>
        <translation>未作任何更改；使用 --yes 则无需回答</translation>
    </message>
    <message>
        <source>a frequency is written like &quot;800 MHz&quot; or &quot;2.4 GHz&quot;</source>
        <translation>频率的写法如 &quot;800 MHz&quot; 或 &quot;2.4 GHz&quot;</translation>
    </message>
    <message>
        <source>a size is written like &quot;12 bytes&quot;, &quot;1.5 KB&quot;, &quot;20 MB&quot; or &quot;2 GB&quot;</source>
        <translation>大小的写法如 &quot;12 bytes&quot;、&quot;1.5 KB&quot;、&quot;20 MB&quot; 或 &quot;2 GB&quot;</translation>
    </message>
    <message>
        <source>not a whole number of 64 bits: %1</source>
        <translation>不是 64 位整数：%1</translation>
    </message>
    <message>
        <source>missing: %1</source>
        <translation>缺少：%1</translation>
    </message>
    <message>
        <source>Purger</source>
        <translation>清理程序</translation>
    </message>
    <message>
        <source>Disk tool</source>
        <translation>磁盘工具</translation>
    </message>
    <message>
        <source>Firewall tool</source>
        <translation>防火墙工具</translation>
    </message>
    <message>
        <source>%1: %2 %</source>
        <translation>%1：%2 %</translation>
    </message>
    <message>
        <source>[yes/no]</source>
        <translation>[是/否]</translation>
    </message>
    <message>
        <source>the scheduler answered: %1</source>
        <translation>计划程序回复：%1</translation>
    </message>
    <message>
        <source>the scheduler has gone</source>
        <translation>计划程序已离开</translation>
    </message>
    <message>
        <source>there are no notices</source>
        <translation>没有通知</translation>
    </message>
    <message>
        <source>there is no notice %1</source>
        <translation>没有通知 %1</translation>
    </message>
    <message>
        <source>there is no scheduler on the bus %1</source>
        <translation>总线 %1 上没有计划程序</translation>
    </message>
    <message>
        <source>the scheduler has not answered</source>
        <translation>计划程序没有回复</translation>
    </message>
    <message>
        <source>waiting for the scheduler</source>
        <translation>正在等待计划程序</translation>
    </message>
    <message>
        <source>another scheduler of this user keeps its notices in %1</source>
        <translation>此用户的另一个计划程序正在 %1 中保存通知</translation>
    </message>
    <message>
        <source>would tell: %1</source>
        <translation>将会通知：%1</translation>
    </message>
    <message>
        <source>there is nothing to tell</source>
        <translation>没有需要通知的内容</translation>
    </message>
    <message>
        <source>cannot read %1: %2; notices will not outlive this process</source>
        <translation>无法读取 %1：%2；通知将随此进程一起丢失</translation>
    </message>
    <message>
        <source>the state in %1 is damaged; it is kept as %2</source>
        <translation>%1 中的状态已损坏；已保留为 %2</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>无法写入 %1：%2</translation>
    </message>
    <message>
        <source>cannot look into the trash %1: %2</source>
        <translation>无法查看废纸篓 %1：%2</translation>
    </message>
    <message>
        <source>the trash holds %1, more than %2</source>
        <translation>废纸篓中有 %1，超过 %2</translation>
    </message>
    <message>
        <source>%1 are free on the disk of %2, less than %3</source>
        <translation>%2 所在磁盘的可用空间为 %1，少于 %3</translation>
    </message>
    <message>
        <source>%1 of memory are free, less than %2</source>
        <translation>可用内存为 %1，少于 %2</translation>
    </message>
    <message>
        <source>the application %1 has been removed from %2 and may have left files behind</source>
        <translation>应用程序 %1 已从 %2 中移除，可能留下了文件</translation>
    </message>
    <message>
        <source>the regular maintenance has been due since %1</source>
        <translation>定期维护自 %1 起已到期</translation>
    </message>
    <message>
        <source>there is no firewall tool on this machine</source>
        <translation>此计算机上没有防火墙工具</translation>
    </message>
    <message>
        <source>Firewall: %1</source>
        <translation>防火墙：%1</translation>
    </message>
    <message>
        <source>Block all connections: %1</source>
        <translation>阻止所有连接：%1</translation>
    </message>
    <message>
        <source>Allow signed software: %1</source>
        <translation>允许已签名的软件：%1</translation>
    </message>
    <message>
        <source>Stealth mode: %1</source>
        <translation>隐身模式：%1</translation>
    </message>
    <message>
        <source>Applications: %1</source>
        <translation>应用程序：%1</translation>
    </message>
    <message>
        <source>the firewall does not take this step: %1</source>
        <translation>防火墙不接受此步骤：%1</translation>
    </message>
    <message>
        <source>nothing is changed: the administrator&apos;s authorisation was not given</source>
        <translation>未作任何更改：未获得管理员授权</translation>
    </message>
    <message>
        <source>nothing is changed: the firewall&apos;s script could not be run</source>
        <translation>未作任何更改：无法运行防火墙脚本</translation>
    </message>
    <message>
        <source>saved</source>
        <translation>已保存</translation>
    </message>
    <message>
        <source>the firewall is not as it should be; what is missing:</source>
        <translation>防火墙未达到应有的状态；缺少：</translation>
    </message>
    <message>
        <source>nothing to do: the firewall is like that already</source>
        <translation>无需操作：防火墙已处于该状态</translation>
    </message>
    <message>
        <source>%1 is not an application: a folder whose name ends with .app is wanted</source>
        <translation>%1 不是应用程序：需要名称以 .app 结尾的文件夹</translation>
    </message>
    <message>
        <source>%1 is not in the firewall&apos;s list</source>
        <translation>%1 不在防火墙列表中</translation>
    </message>
    <message>
        <source>%1 is not in the firewall&apos;s list; add it first</source>
        <translation>%1 不在防火墙列表中；请先添加</translation>
    </message>
    <message>
        <source>contradictory orders for %1</source>
        <translation>对 %1 的指令互相矛盾</translation>
    </message>
    <message>
        <source>missing</source>
        <translation>缺少</translation>
    </message>
    <message>
        <source>%1 (a stand-in)</source>
        <translation>%1（替代品）</translation>
    </message>
    <message>
        <source>%1 was damaged; it is kept with &quot;.damaged&quot; after its name</source>
        <translation>%1 已损坏；已在其名称后加上“.damaged”保留</translation>
    </message>
    <message>
        <source>%1 (stored: %2)</source>
        <translation>%1（存储值：%2）</translation>
    </message>
    <message>
        <source>%1 is damaged; the next change keeps it with &quot;.damaged&quot; after its name</source>
        <translation>%1 已损坏；下次更改时会在其名称后加上“.damaged”保留</translation>
    </message>
    <message>
        <source>the settings were damaged; what they were is in %1</source>
        <translation>设置曾经损坏；原来的内容保存在 %1 中</translation>
    </message>
    <message>
        <source>%1 is stored as %2, which is not a value for it</source>
        <translation>%1 存储的是 %2，这不是有效的值</translation>
    </message>
    <message>
        <source>--state: %1 is a folder; name a file</source>
        <translation>--state：%1 是文件夹；请指定文件</translation>
    </message>
    <message>
        <source>--trash: %1 does not exist; it counts as empty</source>
        <translation>--trash：%1 不存在；视为空</translation>
    </message>
    <message>
        <source>%1 must be a regular file, for it is the scheduler&apos;s lock; remove it</source>
        <translation>%1 是计划程序的锁，必须是普通文件；请将其删除</translation>
    </message>
    <message>
        <source>cannot lock %1: %2</source>
        <translation>无法锁定 %1：%2</translation>
    </message>
    <message>
        <source>the state in %1 is damaged and cannot be renamed: %2; notices will not outlive this process</source>
        <translation>%1 中的状态已损坏且无法重命名：%2；通知将随此进程结束而丢失</translation>
    </message>
    <message>
        <source>cannot look at the disk of %1: %2</source>
        <translation>无法查看 %1 所在的磁盘：%2</translation>
    </message>
    <message>
        <source>cannot look for applications in %1</source>
        <translation>无法在 %1 中查找应用程序</translation>
    </message>
    <message>
        <source>%1 is not a setting; the keys are enabled, block-all, allow-signed and stealth, the values on and off</source>
        <translation>%1 不是设置；键为 enabled、block-all、allow-signed 和 stealth，值为 on 和 off</translation>
    </message>
    <message>
        <source>%1 must not be set both on and off</source>
        <translation>不能同时打开和关闭 %1</translation>
    </message>
    <message>
        <source>the name of the socket of the bus %1 has %2 bytes, more than the possible %3: %4; set TMPDIR to a folder with a shorter name</source>
        <translation>总线 %1 的套接字名称有 %2 字节，超过上限 %3 字节：%4；请将 TMPDIR 设为名称较短的文件夹</translation>
    </message>
    <message>
        <source>the temporary folder %1 cannot be used: %2; set TMPDIR to a folder of your own</source>
        <translation>临时文件夹 %1 无法使用：%2；请将 TMPDIR 设为您自己的文件夹</translation>
    </message>
    <message>
        <source>a folder is in the place of the socket of the bus %1: %2; remove it</source>
        <translation>总线 %1 的套接字所在位置是一个文件夹：%2；请将其删除</translation>
    </message>
    <message>
        <source>the socket of the bus %1 belongs to the user with the number %2: %3; set TMPDIR to a folder of your own</source>
        <translation>总线 %1 的套接字属于编号为 %2 的用户：%3；请将 TMPDIR 设为您自己的文件夹</translation>
    </message>
    <message>
        <source>%1 lines were dropped because the output was not read</source>
        <translation>由于输出未被读取，丢弃了 %1 行</translation>
    </message>
    <message>
        <source>the end of the output was not read</source>
        <translation>输出的末尾未被读取</translation>
    </message>
</context>
<context>
    <name>Tavrik::Ostrel::DaemonSettings</name>
    <message>
        <source>Weekly</source>
        <translation>每周</translation>
    </message>
    <message>
        <source>Once in two weeks</source>
        <translation>每两周</translation>
    </message>
    <message>
        <source>Monthly</source>
        <translation>每月</translation>
    </message>
    <message>
        <source>Once in three months</source>
        <translation>每三个月</translation>
    </message>
    <message>
        <source>Once in six months</source>
        <translation>每六个月</translation>
    </message>
    <message>
        <source>Annualy</source>
        <translation>每年</translation>
    </message>
</context>
</TS>

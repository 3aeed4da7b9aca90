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
        <source>there is no firewall tool on this machine</source>
        <translation>此计算机上没有防火墙工具</translation>
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

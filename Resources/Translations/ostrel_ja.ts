<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja" sourcelanguage="en">
<context>
    <name>FormatText</name>
    <message>
        <source>%1 bytes</source>
        <translation>%1 バイト</translation>
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
        <translation>%1 バイト</translation>
    </message>
    <message>
        <source>no result came for the message to %1</source>
        <translation>%1 宛てのメッセージの結果が届きませんでした</translation>
    </message>
    <message>
        <source>listening as %1 on the bus %2</source>
        <translation>%1 としてバス %2 で待ち受けています</translation>
    </message>
    <message>
        <source>%1 has not come</source>
        <translation>%1 は現れませんでした</translation>
    </message>
    <message>
        <source>%1 could not join the bus %2 within %3 s: the name is taken or the server does not answer</source>
        <translation>%1 は %3 秒以内にバス %2 に参加できませんでした: 名前が使用中か、サーバーが応答しません</translation>
    </message>
    <message>
        <source>nobody serves the bus %1</source>
        <translation>バス %1 を担うプロセスがありません</translation>
    </message>
    <message>
        <source>the name %1 is taken on the bus %2</source>
        <translation>名前 %1 はバス %2 で使用中です</translation>
    </message>
    <message>
        <source>the server of the bus %1 has gone</source>
        <translation>バス %1 のサーバーがなくなりました</translation>
    </message>
    <message>
        <source>a process that cannot be seen from here</source>
        <translation>ここからは見えないプロセス</translation>
    </message>
    <message>
        <source>process %1</source>
        <translation>プロセス %1</translation>
    </message>
    <message>
        <source>%1 (process %2)</source>
        <translation>%1 (プロセス %2)</translation>
    </message>
    <message>
        <source>The bus %1 is served by %2. Its members: %3.</source>
        <translation>バス %1 のサーバー: %2。メンバー: %3。</translation>
    </message>
    <message>
        <source>The system refuses the connection to the bus %1 at %2: %3.</source>
        <translation>システムがバス %1 (%2) への接続を拒否しました: %3。</translation>
    </message>
    <message>
        <source>Nobody serves the bus %1: there is no socket %2.</source>
        <translation>バス %1 を担うプロセスがありません: ソケット %2 が存在しません。</translation>
    </message>
    <message>
        <source>The name %1 is taken on the bus %2, which is served by %3.</source>
        <translation>名前 %1 はバス %2 (サーバー: %3) で使用中です。</translation>
    </message>
    <message>
        <source>The server of the bus %1 does not answer: %2. It may be stopped or busy.</source>
        <translation>バス %1 のサーバーが応答しません: %2。停止中または処理中の可能性があります。</translation>
    </message>
    <message>
        <source>A process that is joining the bus %1 keeps all others out: it holds %2.lock. It may be stopped or busy.</source>
        <translation>バス %1 に参加中のプロセスが %2.lock を保持し、ほかのプロセスが参加できません。停止中または処理中の可能性があります。</translation>
    </message>
    <message>
        <source>Nobody serves the bus %1: a server that has gone left the socket %2 behind. The next process that may serve clears it away.</source>
        <translation>バス %1 を担うプロセスがありません: 終了したサーバーのソケット %2 が残っています。次にサーバーになるプロセスが片付けます。</translation>
    </message>
    <message>
        <source>A file that is no socket is where the socket of the bus %1 belongs. Remove it: %2.</source>
        <translation>バス %1 のソケットの場所に、ソケットではないファイルがあります。削除してください: %2。</translation>
    </message>
    <message>
        <source>A folder is where the socket of the bus %1 belongs. Remove it: %2.</source>
        <translation>バス %1 のソケットの場所にフォルダーがあります。削除してください: %2。</translation>
    </message>
    <message>
        <source>A link to %1 is where the socket of the bus %2 belongs. Remove it: %3.</source>
        <translation>バス %2 のソケットの場所に %1 へのリンクがあります。削除してください: %3。</translation>
    </message>
    <message>
        <source>The socket of the bus %1 belongs to the user with the number %2: %3. Set TMPDIR to a folder of your own.</source>
        <translation>バス %1 のソケットは番号 %2 のユーザーのものです: %3。TMPDIR に自分のフォルダーを指定してください。</translation>
    </message>
    <message>
        <source>The name of the socket of the bus %1 has %2 bytes, and no more than %3 are possible: %4. Set TMPDIR to a folder with a shorter name.</source>
        <translation>バス %1 のソケットの名前は %2 バイトで、上限の %3 バイトを超えています: %4。TMPDIR に名前の短いフォルダーを指定してください。</translation>
    </message>
    <message>
        <source>The bus %1 is served in another temporary folder, %2, by %3. This process looks in %4. TMPDIR must be the same for both.</source>
        <translation>バス %1 は別の一時フォルダー %2 にあります (サーバー: %3)。このプロセスが探すのは %4 です。TMPDIR を同じにしてください。</translation>
    </message>
    <message>
        <source>The bus %1 is served by %2, but its socket %3 has been removed: who comes now does not find it. Start that process again.</source>
        <translation>バス %1 のサーバーは %2 ですが、ソケット %3 が削除されたため、新しい参加者には見つかりません。そのプロセスを再起動してください。</translation>
    </message>
    <message>
        <source>The temporary folder %1 cannot be used: %2.</source>
        <translation>一時フォルダー %1 は使えません: %2。</translation>
    </message>
    <message>
        <source>%1 listens on the socket of the bus %2 but does not speak its language: %3.</source>
        <translation>%1 がバス %2 のソケットで待ち受けていますが、バスの言葉を話しません: %3。</translation>
    </message>
    <message>
        <source>Another bus of this name is served in the temporary folder %1 by %2.</source>
        <translation>同じ名前の別のバスが一時フォルダー %1 にあります (サーバー: %2)。</translation>
    </message>
    <message>
        <source>cannot write to the standard output: %1</source>
        <translation>標準出力に書き込めません: %1</translation>
    </message>
    <message>
        <source>the message is longer than %1 bytes</source>
        <translation>メッセージが %1 バイトを超えています</translation>
    </message>
    <message>
        <source>cannot read %1: %2</source>
        <translation>%1 を読み取れません: %2</translation>
    </message>
    <message>
        <source>the standard input</source>
        <translation>標準入力</translation>
    </message>
    <message>
        <source>a line to say is too long</source>
        <translation>送る行が長すぎます</translation>
    </message>
    <message>
        <source>cannot say a line that does not begin with a name: %1</source>
        <translation>名前で始まらない行は送れません: %1</translation>
    </message>
    <message>
        <source>there is no firewall tool on this machine</source>
        <translation>このコンピュータにはファイアウォールのツールがありません</translation>
    </message>
    <message>
        <source>on</source>
        <translation>オン</translation>
    </message>
    <message>
        <source>off</source>
        <translation>オフ</translation>
    </message>
    <message>
        <source>Firewall: %1</source>
        <translation>ファイアウォール: %1</translation>
    </message>
    <message>
        <source>Block all connections: %1</source>
        <translation>すべての接続をブロック: %1</translation>
    </message>
    <message>
        <source>Allow signed software: %1</source>
        <translation>署名されたソフトウェアを許可: %1</translation>
    </message>
    <message>
        <source>Stealth mode: %1</source>
        <translation>ステルスモード: %1</translation>
    </message>
    <message>
        <source>Applications: %1</source>
        <translation>アプリケーション: %1</translation>
    </message>
    <message>
        <source>the firewall does not take this step: %1</source>
        <translation>ファイアウォールはこの手順を受け付けません: %1</translation>
    </message>
    <message>
        <source>nothing is changed: the administrator&apos;s authorisation was not given</source>
        <translation>何も変更されていません: 管理者の承認が得られませんでした</translation>
    </message>
    <message>
        <source>nothing is changed: the firewall&apos;s script could not be run</source>
        <translation>何も変更されていません: ファイアウォールのスクリプトを実行できませんでした</translation>
    </message>
    <message>
        <source>saved</source>
        <translation>保存しました</translation>
    </message>
    <message>
        <source>the firewall is not as it should be; what is missing:</source>
        <translation>ファイアウォールが期待どおりの状態ではありません。不足しているもの:</translation>
    </message>
    <message>
        <source>nothing to do: the firewall is like that already</source>
        <translation>行うことはありません: ファイアウォールはすでにその状態です</translation>
    </message>
    <message>
        <source>%1 is not an application: a folder whose name ends with .app is wanted</source>
        <translation>%1 はアプリケーションではありません: 名前が .app で終わるフォルダが必要です</translation>
    </message>
    <message>
        <source>%1 is not in the firewall&apos;s list</source>
        <translation>%1 はファイアウォールのリストにありません</translation>
    </message>
    <message>
        <source>%1 is not in the firewall&apos;s list; add it first</source>
        <translation>%1 はファイアウォールのリストにありません。先に追加してください</translation>
    </message>
    <message>
        <source>contradictory orders for %1</source>
        <translation>%1 に対する指示が矛盾しています</translation>
    </message>
</context>
<context>
    <name>Tavrik::Ostrel::DaemonSettings</name>
    <message>
        <source>Weekly</source>
        <translation>毎週</translation>
    </message>
    <message>
        <source>Once in two weeks</source>
        <translation>2週間ごと</translation>
    </message>
    <message>
        <source>Monthly</source>
        <translation>毎月</translation>
    </message>
    <message>
        <source>Once in three months</source>
        <translation>3か月ごと</translation>
    </message>
    <message>
        <source>Once in six months</source>
        <translation>6か月ごと</translation>
    </message>
    <message>
        <source>Annualy</source>
        <translation>毎年</translation>
    </message>
</context>
</TS>

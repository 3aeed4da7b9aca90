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
        <source>unknown</source>
        <translation>不明</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名前</translation>
    </message>
    <message>
        <source>Mounted at</source>
        <translation>マウント先</translation>
    </message>
    <message>
        <source>Total</source>
        <translation>合計</translation>
    </message>
    <message>
        <source>Free</source>
        <translation>空き</translation>
    </message>
    <message>
        <source>Used</source>
        <translation>使用</translation>
    </message>
    <message>
        <source>the disk tool diskutil is missing; it comes with macOS and is looked for in PATH</source>
        <translation>ディスクツール diskutil がありません。macOS に付属し、PATH から探されます</translation>
    </message>
    <message>
        <source>diskutil tells of no mounted disk</source>
        <translation>diskutil はマウントされたディスクを示しません</translation>
    </message>
    <message>
        <source>there is no %1</source>
        <translation>%1 はありません</translation>
    </message>
    <message>
        <source>no disk holds %1</source>
        <translation>%1 を含むディスクはありません</translation>
    </message>
    <message>
        <source>not UTF-8: %1</source>
        <translation>UTF-8 ではありません: %1</translation>
    </message>
    <message>
        <source>the path is no text in this locale: %1</source>
        <translation>このロケールではパスが文字列になりません: %1</translation>
    </message>
    <message>
        <source>a file</source>
        <translation>ファイル</translation>
    </message>
    <message>
        <source>a folder</source>
        <translation>フォルダ</translation>
    </message>
    <message>
        <source>a link</source>
        <translation>リンク</translation>
    </message>
    <message>
        <source>a link to nothing</source>
        <translation>リンク先のないリンク</translation>
    </message>
    <message>
        <source>neither file nor folder</source>
        <translation>ファイルでもフォルダでもないもの</translation>
    </message>
    <message>
        <source>not there</source>
        <translation>存在しません</translation>
    </message>
    <message>
        <source>the path does not begin with /</source>
        <translation>パスが / で始まりません</translation>
    </message>
    <message>
        <source>a component of the path is &quot;..&quot;</source>
        <translation>パスの要素に &quot;..&quot; があります</translation>
    </message>
    <message>
        <source>language folders may be removed anywhere</source>
        <translation>言語フォルダはどこでも削除できます</translation>
    </message>
    <message>
        <source>%1 may be cleaned</source>
        <translation>%1 は整理の対象です</translation>
    </message>
    <message>
        <source>it is on a writable volume</source>
        <translation>書き込み可能なボリューム上にあります</translation>
    </message>
    <message>
        <source>under /Volumes only what exists may be removed</source>
        <translation>/Volumes の下では存在するものだけを削除できます</translation>
    </message>
    <message>
        <source>no writable volume holds it</source>
        <translation>これを含む書き込み可能なボリュームはありません</translation>
    </message>
    <message>
        <source>it lies in no folder that may be cleaned</source>
        <translation>整理の対象となるフォルダの中にありません</translation>
    </message>
    <message>
        <source>what may be removed may be searched</source>
        <translation>削除できるものは検索できます</translation>
    </message>
    <message>
        <source>%1 is a library folder of the system</source>
        <translation>%1 はシステムのライブラリフォルダです</translation>
    </message>
    <message>
        <source>it may not be removed and is in no library folder</source>
        <translation>削除できず、ライブラリフォルダの中にもありません</translation>
    </message>
    <message>
        <source>yes</source>
        <translation>はい</translation>
    </message>
    <message>
        <source>no</source>
        <translation>いいえ</translation>
    </message>
    <message>
        <source>none</source>
        <translation>なし</translation>
    </message>
    <message>
        <source>What it is</source>
        <translation>種類</translation>
    </message>
    <message>
        <source>Safe to remove</source>
        <translation>削除の可否</translation>
    </message>
    <message>
        <source>To be searched</source>
        <translation>検索の可否</translation>
    </message>
    <message>
        <source>You may read it</source>
        <translation>読み取り権限</translation>
    </message>
    <message>
        <source>You may write it</source>
        <translation>書き込み権限</translation>
    </message>
    <message>
        <source>You may remove it</source>
        <translation>削除権限</translation>
    </message>
    <message>
        <source>With all inside</source>
        <translation>中身も含めた削除</translation>
    </message>
    <message>
        <source>Application</source>
        <translation>アプリケーション</translation>
    </message>
    <message>
        <source>Language folder</source>
        <translation>言語フォルダ</translation>
    </message>
    <message>
        <source>Disk</source>
        <translation>ディスク</translation>
    </message>
    <message>
        <source>the system does not tell its memory</source>
        <translation>システムからメモリの情報を得られません</translation>
    </message>
    <message>
        <source>Memory</source>
        <translation>メモリ</translation>
    </message>
    <message>
        <source>Cleaning the memory</source>
        <translation>メモリを整理しています</translation>
    </message>
    <message>
        <source>the purger cannot be started: %1</source>
        <translation>整理プログラムを起動できません: %1</translation>
    </message>
    <message>
        <source>Freed %1.</source>
        <translation>%1 を解放しました。</translation>
    </message>
    <message>
        <source>The time is over; %1 were freed.</source>
        <translation>時間切れです。%1 を解放しました。</translation>
    </message>
    <message>
        <source>Stopped; %1 were freed.</source>
        <translation>中止しました。%1 を解放しました。</translation>
    </message>
    <message>
        <source>on, true, yes, 1, or off, false, no, 0</source>
        <translation>on, true, yes, 1 または off, false, no, 0</translation>
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
        <source>bytes, or a size such as &quot;500 MB&quot; or &quot;2 GB&quot;</source>
        <translation>バイト数、または &quot;500 MB&quot; や &quot;2 GB&quot; のようなサイズ</translation>
    </message>
    <message>
        <source>a part of the memory between 0 and 1, such as 0.05, or a percentage such as 5%</source>
        <translation>0.05 のような 0 から 1 までのメモリの割合、または 5% のような百分率</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>a date such as 2026-01-31, or none</source>
        <translation>2026-01-31 のような日付、または none</translation>
    </message>
    <message>
        <source>%1 (no period)</source>
        <translation>%1（期間ではありません）</translation>
    </message>
    <message>
        <source>a path that begins with /</source>
        <translation>/ で始まるパス</translation>
    </message>
    <message>
        <source>a URL such as https://example.org/help</source>
        <translation>https://example.org/help のような URL</translation>
    </message>
    <message>
        <source>there is no setting %1; &quot;settings list&quot; names them</source>
        <translation>設定 %1 はありません。&quot;settings list&quot; で一覧できます</translation>
    </message>
    <message>
        <source>the settings cannot be written: %1</source>
        <translation>設定を書き込めません: %1</translation>
    </message>
    <message>
        <source>No reminder.</source>
        <translation>リマインダーはありません。</translation>
    </message>
    <message>
        <source>Next reminder: %1, counted from %2.</source>
        <translation>次のリマインダー: %1（%2 から起算）。</translation>
    </message>
    <message>
        <source>Setting</source>
        <translation>設定</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>値</translation>
    </message>
    <message>
        <source>Default</source>
        <translation>既定値</translation>
    </message>
    <message>
        <source>%1 is no value for %2, which takes %3</source>
        <translation>%1 は %2 の値ではありません。使えるのは %3 です</translation>
    </message>
    <message>
        <source>name a setting, or all of them with --all</source>
        <translation>設定を 1 つ指定するか、--all ですべてを指定してください</translation>
    </message>
    <message>
        <source>Set all settings back to their defaults?</source>
        <translation>すべての設定を既定値に戻しますか?</translation>
    </message>
    <message>
        <source>nothing was changed; --yes needs no answer</source>
        <translation>何も変更されていません。--yes なら確認は不要です</translation>
    </message>
    <message>
        <source>a frequency is written like &quot;800 MHz&quot; or &quot;2.4 GHz&quot;</source>
        <translation>周波数は &quot;800 MHz&quot; や &quot;2.4 GHz&quot; のように書きます</translation>
    </message>
    <message>
        <source>a size is written like &quot;12 bytes&quot;, &quot;1.5 KB&quot;, &quot;20 MB&quot; or &quot;2 GB&quot;</source>
        <translation>サイズは &quot;12 bytes&quot;、&quot;1.5 KB&quot;、&quot;20 MB&quot;、&quot;2 GB&quot; のように書きます</translation>
    </message>
    <message>
        <source>not a whole number of 64 bits: %1</source>
        <translation>64 ビットの整数ではありません: %1</translation>
    </message>
    <message>
        <source>missing: %1</source>
        <translation>ありません: %1</translation>
    </message>
    <message>
        <source>Purger</source>
        <translation>整理プログラム</translation>
    </message>
    <message>
        <source>Disk tool</source>
        <translation>ディスクツール</translation>
    </message>
    <message>
        <source>Firewall tool</source>
        <translation>ファイアウォールツール</translation>
    </message>
    <message>
        <source>%1: %2 %</source>
        <translation>%1: %2 %</translation>
    </message>
    <message>
        <source>[yes/no]</source>
        <translation>[はい/いいえ]</translation>
    </message>
    <message>
        <source>the scheduler answered: %1</source>
        <translation>スケジューラーからの応答: %1</translation>
    </message>
    <message>
        <source>the scheduler has gone</source>
        <translation>スケジューラーがいなくなりました</translation>
    </message>
    <message>
        <source>there are no notices</source>
        <translation>通知はありません</translation>
    </message>
    <message>
        <source>there is no notice %1</source>
        <translation>通知 %1 はありません</translation>
    </message>
    <message>
        <source>there is no scheduler on the bus %1</source>
        <translation>バス %1 にスケジューラーはいません</translation>
    </message>
    <message>
        <source>the scheduler has not answered</source>
        <translation>スケジューラーが応答しませんでした</translation>
    </message>
    <message>
        <source>waiting for the scheduler</source>
        <translation>スケジューラーを待っています</translation>
    </message>
    <message>
        <source>another scheduler of this user keeps its notices in %1</source>
        <translation>このユーザーの別のスケジューラーが %1 に通知を保存しています</translation>
    </message>
    <message>
        <source>would tell: %1</source>
        <translation>通知する内容: %1</translation>
    </message>
    <message>
        <source>there is nothing to tell</source>
        <translation>通知することはありません</translation>
    </message>
    <message>
        <source>cannot read %1: %2; notices will not outlive this process</source>
        <translation>%1 を読み取れません: %2。通知はこのプロセスの終了とともに失われます</translation>
    </message>
    <message>
        <source>the state in %1 is damaged; it is kept as %2</source>
        <translation>%1 の状態は壊れています。%2 として残します</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>%1 に書き込めません: %2</translation>
    </message>
    <message>
        <source>cannot look into the trash %1: %2</source>
        <translation>ゴミ箱 %1 の中を確認できません: %2</translation>
    </message>
    <message>
        <source>the trash holds %1, more than %2</source>
        <translation>ゴミ箱の中身は %1 で、%2 を超えています</translation>
    </message>
    <message>
        <source>%1 are free on the disk of %2, less than %3</source>
        <translation>%2 のディスクの空きは %1 で、%3 を下回っています</translation>
    </message>
    <message>
        <source>%1 of memory are free, less than %2</source>
        <translation>メモリの空きは %1 で、%2 を下回っています</translation>
    </message>
    <message>
        <source>the application %1 has been removed from %2 and may have left files behind</source>
        <translation>アプリケーション %1 が %2 から削除されました。ファイルが残っている可能性があります</translation>
    </message>
    <message>
        <source>the regular maintenance has been due since %1</source>
        <translation>定期メンテナンスの期日は %1 でした</translation>
    </message>
    <message>
        <source>there is no firewall tool on this machine</source>
        <translation>このコンピュータにはファイアウォールのツールがありません</translation>
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
    <message>
        <source>missing</source>
        <translation>ありません</translation>
    </message>
    <message>
        <source>%1 (a stand-in)</source>
        <translation>%1 (代用)</translation>
    </message>
    <message>
        <source>%1 was damaged; it is kept with &quot;.damaged&quot; after its name</source>
        <translation>%1 は壊れていました。名前の末尾に「.damaged」を付けて残しました</translation>
    </message>
    <message>
        <source>%1 (stored: %2)</source>
        <translation>%1 (保存値: %2)</translation>
    </message>
    <message>
        <source>%1 is damaged; the next change keeps it with &quot;.damaged&quot; after its name</source>
        <translation>%1 は壊れています。次の変更のときに、名前の末尾に「.damaged」を付けて残します</translation>
    </message>
    <message>
        <source>the settings were damaged; what they were is in %1</source>
        <translation>設定は壊れていました。以前の内容は %1 にあります</translation>
    </message>
    <message>
        <source>%1 is stored as %2, which is not a value for it</source>
        <translation>%1 には %2 が保存されていますが、有効な値ではありません</translation>
    </message>
    <message>
        <source>--state: %1 is a folder; name a file</source>
        <translation>--state: %1 はフォルダーです。ファイルを指定してください</translation>
    </message>
    <message>
        <source>--trash: %1 does not exist; it counts as empty</source>
        <translation>--trash: %1 は存在しません。空とみなします</translation>
    </message>
    <message>
        <source>%1 must be a regular file, for it is the scheduler&apos;s lock; remove it</source>
        <translation>%1 はスケジューラーのロックなので、通常のファイルでなければなりません。削除してください</translation>
    </message>
    <message>
        <source>cannot lock %1: %2</source>
        <translation>%1 をロックできません: %2</translation>
    </message>
    <message>
        <source>the state in %1 is damaged and cannot be renamed: %2; notices will not outlive this process</source>
        <translation>%1 の状態は壊れていて、名前を変更できません: %2。通知はこのプロセスが終わると失われます</translation>
    </message>
    <message>
        <source>cannot look at the disk of %1: %2</source>
        <translation>%1 のディスクを確認できません: %2</translation>
    </message>
    <message>
        <source>cannot look for applications in %1</source>
        <translation>%1 の中のアプリケーションを探せません</translation>
    </message>
    <message>
        <source>%1 is not a setting; the keys are enabled, block-all, allow-signed and stealth, the values on and off</source>
        <translation>%1 は設定ではありません。キーは enabled、block-all、allow-signed、stealth、値は on と off です</translation>
    </message>
    <message>
        <source>%1 must not be set both on and off</source>
        <translation>%1 を同時にオンとオフにすることはできません</translation>
    </message>
    <message>
        <source>the name of the socket of the bus %1 has %2 bytes, more than the possible %3: %4; set TMPDIR to a folder with a shorter name</source>
        <translation>バス %1 のソケットの名前は %2 バイトで、上限の %3 バイトを超えています: %4。TMPDIR に名前の短いフォルダーを指定してください</translation>
    </message>
    <message>
        <source>the temporary folder %1 cannot be used: %2; set TMPDIR to a folder of your own</source>
        <translation>一時フォルダー %1 は使えません: %2。TMPDIR に自分のフォルダーを指定してください</translation>
    </message>
    <message>
        <source>a folder is in the place of the socket of the bus %1: %2; remove it</source>
        <translation>バス %1 のソケットの場所にフォルダーがあります: %2。削除してください</translation>
    </message>
    <message>
        <source>the socket of the bus %1 belongs to the user with the number %2: %3; set TMPDIR to a folder of your own</source>
        <translation>バス %1 のソケットは番号 %2 のユーザーのものです: %3。TMPDIR に自分のフォルダーを指定してください</translation>
    </message>
    <message>
        <source>%1 lines were dropped because the output was not read</source>
        <translation>出力が読まれなかったため、%1 行が破棄されました</translation>
    </message>
    <message>
        <source>the end of the output was not read</source>
        <translation>出力の終わりが読まれませんでした</translation>
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

<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>BadpixelListModel</name>
    <message>
        <source>x</source>
        <translation>x</translation>
    </message>
    <message>
        <source>y</source>
        <translation>y</translation>
    </message>
    <message>
        <source>class</source>
        <translation>Klasse</translation>
    </message>
</context>
<context>
    <name>Camera</name>
    <message>
        <source>Can&apos;t open ini file.</source>
        <translation>Die INI-Datei kann nicht geöffnet werden.</translation>
    </message>
    <message>
        <source>Can&apos;t open camera parameter file.</source>
        <translation>Die Kameraparameterdatei kann nicht geöffnet werden.</translation>
    </message>
</context>
<context>
    <name>CameraListModel</name>
    <message>
        <source>free</source>
        <translation>frei</translation>
    </message>
    <message>
        <source>opened</source>
        <translation>geöffnet</translation>
    </message>
    <message>
        <source>in use</source>
        <translation>belegt</translation>
    </message>
    <message>
        <source>Cam</source>
        <translation>Kam</translation>
    </message>
    <message>
        <source>Dev</source>
        <translation>Gerät</translation>
    </message>
    <message>
        <source>Model</source>
        <translation>Modell</translation>
    </message>
    <message>
        <source>SerNo</source>
        <translation>SerNr</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
</context>
<context>
    <name>DetectionDialogue</name>
    <message>
        <source>Hot pixel detection</source>
        <translation>Hotpixel-Erkennung</translation>
    </message>
    <message>
        <source>Cover the sensor completely during capturing!
</source>
        <translation>Den Sensor während der Aufnahme vollständig abdecken!
</translation>
    </message>
    <message>
        <source>Hot pixel detected: -</source>
        <translation>Erkannte Hotpixel: -</translation>
    </message>
    <message>
        <source>Please Wait...</source>
        <translation>Bitte warten...</translation>
    </message>
    <message>
        <source>Hot pixel detected: 0</source>
        <translation>Erkannte Hotpixel: 0</translation>
    </message>
    <message>
        <source>Threshold</source>
        <translation>Schwellwert</translation>
    </message>
    <message>
        <source>Clear old hot pixel list</source>
        <translation>Alte Hotpixel-Liste leeren</translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Detection</source>
        <translation>Erkennung</translation>
    </message>
</context>
<context>
    <name>Dialog_About</name>
    <message>
        <source>About Qt</source>
        <translation>Über Qt</translation>
    </message>
</context>
<context>
    <name>MagnifierControl</name>
    <message>
        <source>Click to center</source>
        <translation>Zum Zentrieren klicken</translation>
    </message>
    <message>
        <source>Bayer Color:</source>
        <translation>Bayer-Farbe:</translation>
    </message>
    <message>
        <source>Value: </source>
        <translation>Wert: </translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Speckmend</source>
        <translation>Speckmend</translation>
    </message>
    <message>
        <source>Toolbar</source>
        <translation>Werkzeugleiste</translation>
    </message>
    <message>
        <source>Kelvo Speckmend</source>
        <translation>Kelvo Speckmend</translation>
    </message>
    <message>
        <source>&amp;Open camera</source>
        <translation>Kamera &amp;öffnen</translation>
    </message>
    <message>
        <source>&amp;Close camera</source>
        <translation>Kamera &amp;schließen</translation>
    </message>
    <message>
        <source>&amp;Save hot pixel list</source>
        <translation>Hotpixel-Liste s&amp;peichern</translation>
    </message>
    <message>
        <source>&amp;Load hot pixel list</source>
        <translation>Hotpixel-Liste &amp;laden</translation>
    </message>
    <message>
        <source>&amp;Highlight</source>
        <translation>&amp;Hervorheben</translation>
    </message>
    <message>
        <source>&amp;Write hot pixel</source>
        <translation>Hotpixel &amp;schreiben</translation>
    </message>
    <message>
        <source>Hot pixel correction</source>
        <translation>Hotpixel-Korrektur</translation>
    </message>
    <message>
        <source>&amp;Add hot pixel</source>
        <translation>Hotpixel &amp;hinzufügen</translation>
    </message>
    <message>
        <source>&amp;Delete hot pixel</source>
        <translation>Hotpixel &amp;löschen</translation>
    </message>
    <message>
        <source>Clear user hot pixel</source>
        <translation>Benutzer-Hotpixel entfernen</translation>
    </message>
    <message>
        <source>Detec&amp;t hot pixel</source>
        <translation>Hotpixel &amp;erkennen</translation>
    </message>
    <message>
        <source>1:1</source>
        <translation>1:1</translation>
    </message>
    <message>
        <source>2:1</source>
        <translation>2:1</translation>
    </message>
    <message>
        <source>4:1</source>
        <translation>4:1</translation>
    </message>
    <message>
        <source>1:2</source>
        <translation>1:2</translation>
    </message>
    <message>
        <source>1:4</source>
        <translation>1:4</translation>
    </message>
    <message>
        <source>To fit</source>
        <translation>Einpassen</translation>
    </message>
    <message>
        <source>&amp;Usage</source>
        <translation>&amp;Bedienung</translation>
    </message>
    <message>
        <source>&amp;About...</source>
        <translation>&amp;Über...</translation>
    </message>
    <message>
        <source>&amp;Export hot pixel list</source>
        <translation>Hotpixel-Liste &amp;exportieren</translation>
    </message>
    <message>
        <source>&amp;Import hot pixel list</source>
        <translation>Hotpixel-Liste &amp;importieren</translation>
    </message>
    <message>
        <source>E&amp;xit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Camera list</source>
        <translation>Kameraliste</translation>
    </message>
    <message>
        <source>Hot pixel list</source>
        <translation>Hotpixel-Liste</translation>
    </message>
    <message>
        <source>Magnifier</source>
        <translation>Lupe</translation>
    </message>
    <message>
        <source>Camera properties</source>
        <translation>Kameraeigenschaften</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>Please note!</source>
        <translation>Bitte beachten!</translation>
    </message>
    <message>
        <source>This camera only supports software correction and therefore can&apos;t save inside the camera memory.</source>
        <translation>Diese Kamera unterstützt nur die Softwarekorrektur und kann daher nicht im Kameraspeicher speichern.</translation>
    </message>
    <message>
        <source>Detection failed</source>
        <translation>Erkennung fehlgeschlagen</translation>
    </message>
    <message>
        <source>Too many hot pixel have been found.
Please make sure that the sensor is completely obscured and the threshold is not too low.</source>
        <translation>Es wurden zu viele Hotpixel gefunden.
Bitte stellen Sie sicher, dass der Sensor vollständig abgedunkelt und der Schwellwert nicht zu niedrig ist.</translation>
    </message>
    <message>
        <source>Save hot pixel list</source>
        <translation>Hotpixel-Liste speichern</translation>
    </message>
    <message>
        <source>Binary files (*.bin)</source>
        <translation>Binärdateien (*.bin)</translation>
    </message>
    <message>
        <source>Open hot pixel list</source>
        <translation>Hotpixel-Liste öffnen</translation>
    </message>
    <message>
        <source>Export hot pixel list</source>
        <translation>Hotpixel-Liste exportieren</translation>
    </message>
    <message>
        <source>Text files (*.txt)</source>
        <translation>Textdateien (*.txt)</translation>
    </message>
    <message>
        <source>Import hot pixel list</source>
        <translation>Hotpixel-Liste importieren</translation>
    </message>
    <message>
        <source>Kelvo Speckmend - Usage

Navigation:

Right mouse button: Drag to move image
Arrow keys: Click once into magnifier to move focus pixel by pixel

Shortcuts:

%1	 Add a hot pixel to the list
%2	 Removes a hot pixel from the list
</source>
        <translation>Kelvo Speckmend - Bedienung

Navigation:

Rechte Maustaste: Ziehen verschiebt das Bild
Pfeiltasten: Nach Klick in die Lupe Fokus pixelweise bewegen

Tastenkürzel:

%1	 Hotpixel zur Liste hinzufügen
%2	 Hotpixel aus der Liste entfernen
</translation>
    </message>
    <message>
        <source>Usage</source>
        <translation>Bedienung</translation>
    </message>
    <message>
        <source>Not supported!</source>
        <translation>Nicht unterstützt!</translation>
    </message>
    <message>
        <source>This camera only supports software correction and can&apos;t be saved inside the camera memory!</source>
        <translation>Diese Kamera unterstützt nur die Softwarekorrektur, im Kameraspeicher kann nicht gespeichert werden!</translation>
    </message>
    <message>
        <source>This action will completely overwrite the user defined hot pixel list in the EEPROM of the camera.</source>
        <translation>Diese Aktion überschreibt die benutzerdefinierte Hotpixel-Liste im EEPROM der Kamera vollständig.</translation>
    </message>
    <message>
        <source>Do you want to continue?</source>
        <translation>Möchten Sie fortfahren?</translation>
    </message>
    <message>
        <source>Write failed</source>
        <translation>Schreiben fehlgeschlagen</translation>
    </message>
    <message>
        <source>The image is too big and will be resized</source>
        <translation>Das Bild ist zu groß und wird verkleinert</translation>
    </message>
    <message>
        <source>Live image</source>
        <translation>Livebild</translation>
    </message>
    <message>
        <source>More commands</source>
        <translation>Weitere Befehle</translation>
    </message>
    <message>
        <source>Magnification</source>
        <translation>Vergrößerung</translation>
    </message>
</context>
<context>
    <name>ParameterBlockWidget</name>
    <message>
        <source>Framerate</source>
        <translation>Bildrate</translation>
    </message>
    <message>
        <source>Exposure</source>
        <translation>Belichtung</translation>
    </message>
    <message>
        <source>Mastergain</source>
        <translation>Gesamtverstärkung</translation>
    </message>
</context>
<context>
    <name>PixelclassDelegate</name>
    <message>
        <source>factory</source>
        <translation>Werk</translation>
    </message>
    <message>
        <source>user</source>
        <translation>Benutzer</translation>
    </message>
    <message>
        <source>ignore</source>
        <translation>Ignorieren</translation>
    </message>
</context>
</TS>

<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>KWChannelEditorController</name>
    <message>
        <source>Channels</source>
        <translation>Kanäle</translation>
    </message>
    <message>
        <source>View</source>
        <translation>Sicht</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>This kind of channel has no options.</source>
        <translation>Diese Art von Kanal hat keine Optionen.</translation>
    </message>
    <message>
        <source>Choose a channel in the list.</source>
        <translation>Wählen Sie einen Kanal in der Liste.</translation>
    </message>
</context>
<context>
    <name>KWChannelUndoRecorder</name>
    <message>
        <source>Edit Keys</source>
        <translation>Keyframes bearbeiten</translation>
    </message>
    <message>
        <source>Change Curve Shape</source>
        <translation>Kurvenform ändern</translation>
    </message>
    <message>
        <source>Change Channel Type</source>
        <translation>Kanaltyp ändern</translation>
    </message>
    <message>
        <source>Paste Channel</source>
        <translation>Kanal einfügen</translation>
    </message>
    <message>
        <source>Change Expression</source>
        <translation>Ausdruck ändern</translation>
    </message>
    <message>
        <source>Change Value</source>
        <translation>Wert ändern</translation>
    </message>
    <message>
        <source>Change Interpolation</source>
        <translation>Interpolation ändern</translation>
    </message>
    <message>
        <source>Change Repeat</source>
        <translation>Wiederholung ändern</translation>
    </message>
</context>
<context>
    <name>KWDocumentInspector</name>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Form</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>Keyed archive, XML</source>
        <translation>Schlüsselarchiv, XML</translation>
    </message>
    <message>
        <source>Sequential archive</source>
        <translation>Sequenzielles Archiv</translation>
    </message>
    <message>
        <source>Keyed archive, binary</source>
        <translation>Schlüsselarchiv, binär</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Breite</translation>
    </message>
    <message>
        <source>The width of the stage in pixels</source>
        <translation>Die Breite der Bühne in Pixeln</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>Höhe</translation>
    </message>
    <message>
        <source>The height of the stage in pixels</source>
        <translation>Die Höhe der Bühne in Pixeln</translation>
    </message>
    <message>
        <source>Stage</source>
        <translation>Bühne</translation>
    </message>
    <message>
        <source>Scale</source>
        <translation>Maßstab</translation>
    </message>
    <message>
        <source>Pixels of the stage for a meter</source>
        <translation>Pixel der Bühne für einen Meter</translation>
    </message>
    <message>
        <source>px/m</source>
        <translation>px/m</translation>
    </message>
    <message>
        <source>Distance</source>
        <translation>Abstand</translation>
    </message>
    <message>
        <source>How far the camera is from the sprites, for panning and tilting</source>
        <translation>Wie weit die Kamera von den Sprites entfernt ist, für Schwenken und Neigen</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
    <message>
        <source>What is behind the sprites</source>
        <translation>Was hinter den Sprites ist</translation>
    </message>
    <message>
        <source>Transparent</source>
        <translation>Transparent</translation>
    </message>
    <message>
        <source>Plain color</source>
        <translation>Einfarbig</translation>
    </message>
    <message>
        <source>Room</source>
        <translation>Raum</translation>
    </message>
    <message>
        <source>Backdrop</source>
        <translation>Hintergrund</translation>
    </message>
    <message>
        <source>Backdrop color</source>
        <translation>Hintergrundfarbe</translation>
    </message>
    <message>
        <source>The color, or that of the wall at its top</source>
        <translation>Die Farbe, oder die der Wand oben</translation>
    </message>
    <message>
        <source>Wall color</source>
        <translation>Wandfarbe</translation>
    </message>
    <message>
        <source>The color of the wall at its foot</source>
        <translation>Die Farbe der Wand unten</translation>
    </message>
    <message>
        <source>Floor color</source>
        <translation>Bodenfarbe</translation>
    </message>
    <message>
        <source>The color of the floor</source>
        <translation>Die Farbe des Bodens</translation>
    </message>
    <message>
        <source>Colors</source>
        <translation>Farben</translation>
    </message>
    <message>
        <source>Change Stage Size</source>
        <translation>Bühnengröße ändern</translation>
    </message>
    <message>
        <source>Change Scale</source>
        <translation>Maßstab ändern</translation>
    </message>
    <message>
        <source>Change Camera Distance</source>
        <translation>Kameraabstand ändern</translation>
    </message>
    <message>
        <source>Change Backdrop</source>
        <translation>Hintergrund ändern</translation>
    </message>
    <message>
        <source>Change Backdrop Color</source>
        <translation>Hintergrundfarbe ändern</translation>
    </message>
    <message>
        <source>Not saved yet</source>
        <translation>Noch nicht gesichert</translation>
    </message>
    <message>
        <source>%1, read-only</source>
        <translation>%1, schreibgeschützt</translation>
    </message>
</context>
<context>
    <name>KWEditAppearance</name>
    <message>
        <source>As the &amp;System</source>
        <translation>Wie das &amp;System</translation>
    </message>
    <message>
        <source>&amp;Light</source>
        <translation>&amp;Hell</translation>
    </message>
    <message>
        <source>&amp;Dark</source>
        <translation>&amp;Dunkel</translation>
    </message>
</context>
<context>
    <name>KWEditApplication</name>
    <message>
        <source>a document without a name</source>
        <translation>ein Dokument ohne Namen</translation>
    </message>
    <message>
        <source>Recover the changes to %1?</source>
        <translation>Änderungen an %1 wiederherstellen?</translation>
    </message>
    <message>
        <source>%1: the picture cannot be written</source>
        <translation>%1: Das Bild kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>kwedit ended before they were saved. The copy is of %1.</source>
        <translation>kwedit wurde beendet, bevor sie gesichert waren. Die Kopie ist vom %1.</translation>
    </message>
</context>
<context>
    <name>KWEditAutosave</name>
    <message>
        <source>%1: the folder cannot be made</source>
        <translation>%1: Der Ordner kann nicht angelegt werden</translation>
    </message>
</context>
<context>
    <name>KWEditCommands</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>E&amp;lement</source>
        <translation>&amp;Element</translation>
    </message>
    <message>
        <source>&amp;Keys</source>
        <translation>&amp;Keyframes</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Playback</source>
        <translation>&amp;Wiedergabe</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;New</source>
        <translation>&amp;Neu</translation>
    </message>
    <message>
        <source>Opens a window on an empty stage</source>
        <translation>Öffnet ein Fenster mit einer leeren Bühne</translation>
    </message>
    <message>
        <source>&amp;Open...</source>
        <translation>Ö&amp;ffnen...</translation>
    </message>
    <message>
        <source>Opens a document</source>
        <translation>Öffnet ein Dokument</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>&amp;Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>Documents that were open lately</source>
        <translation>Zuletzt geöffnete Dokumente</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>Closes this window</source>
        <translation>Schließt dieses Fenster</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Sichern</translation>
    </message>
    <message>
        <source>Writes the document to its file</source>
        <translation>Schreibt das Dokument in seine Datei</translation>
    </message>
    <message>
        <source>Save &amp;As...</source>
        <translation>Sichern &amp;unter...</translation>
    </message>
    <message>
        <source>Gives the document another file or form</source>
        <translation>Gibt dem Dokument eine andere Datei oder ein anderes Format</translation>
    </message>
    <message>
        <source>Save a Co&amp;py...</source>
        <translation>&amp;Kopie sichern...</translation>
    </message>
    <message>
        <source>Writes a copy elsewhere; this document stays as it is</source>
        <translation>Schreibt anderswo eine Kopie; dieses Dokument bleibt, wie es ist</translation>
    </message>
    <message>
        <source>Re&amp;vert to Saved</source>
        <translation>Zurück zur &amp;gesicherten Fassung</translation>
    </message>
    <message>
        <source>Reads the document from its file again</source>
        <translation>Liest das Dokument neu aus seiner Datei</translation>
    </message>
    <message>
        <source>Export &amp;Frames...</source>
        <translation>F&amp;rames exportieren...</translation>
    </message>
    <message>
        <source>Renders frames as PNG files</source>
        <translation>Rendert Frames als PNG-Dateien</translation>
    </message>
    <message>
        <source>Export &amp;Movie...</source>
        <translation>Fil&amp;m exportieren...</translation>
    </message>
    <message>
        <source>Renders a movie</source>
        <translation>Rendert einen Film</translation>
    </message>
    <message>
        <source>Export Va&amp;lues...</source>
        <translation>&amp;Werte exportieren...</translation>
    </message>
    <message>
        <source>Writes the values of all channels, frame by frame, as CSV or JSON</source>
        <translation>Schreibt die Werte aller Kanäle, Frame für Frame, als CSV oder JSON</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>Closes all windows</source>
        <translation>Schließt alle Fenster</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>Takes the latest step back</source>
        <translation>Nimmt den letzten Schritt zurück</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederherstellen</translation>
    </message>
    <message>
        <source>Does again what was undone</source>
        <translation>Führt das Zurückgenommene wieder aus</translation>
    </message>
    <message>
        <source>Cance&amp;l Drag</source>
        <translation>&amp;Ziehen abbrechen</translation>
    </message>
    <message>
        <source>Puts back what is being dragged; Escape does it too</source>
        <translation>Bringt das Gezogene an seinen Platz zurück; Esc tut es auch</translation>
    </message>
    <message>
        <source>&amp;Copy Channel</source>
        <translation>Kanal &amp;kopieren</translation>
    </message>
    <message>
        <source>Keeps a copy of the channel that is edited</source>
        <translation>Behält eine Kopie des Kanals, der bearbeitet wird</translation>
    </message>
    <message>
        <source>&amp;Paste Channel</source>
        <translation>Kanal &amp;einfügen</translation>
    </message>
    <message>
        <source>Puts the copied channel in place of the one that is edited</source>
        <translation>Ersetzt den Kanal, der bearbeitet wird, durch den kopierten</translation>
    </message>
    <message>
        <source>&amp;New Sprite</source>
        <translation>&amp;Neues Sprite</translation>
    </message>
    <message>
        <source>Adds a sprite with the usual channels</source>
        <translation>Fügt ein Sprite mit den üblichen Kanälen hinzu</translation>
    </message>
    <message>
        <source>New &amp;Shape</source>
        <translation>Neue &amp;Form</translation>
    </message>
    <message>
        <source>Adds a sprite of a given shape</source>
        <translation>Fügt ein Sprite einer bestimmten Form hinzu</translation>
    </message>
    <message>
        <source>New from &amp;Files...</source>
        <translation>Neu aus &amp;Dateien...</translation>
    </message>
    <message>
        <source>Adds a sprite for each picture or movie</source>
        <translation>Fügt für jedes Bild oder jeden Film ein Sprite hinzu</translation>
    </message>
    <message>
        <source>New &amp;Channel...</source>
        <translation>Neuer &amp;Kanal...</translation>
    </message>
    <message>
        <source>Adds a channel to the selected element</source>
        <translation>Fügt dem ausgewählten Element einen Kanal hinzu</translation>
    </message>
    <message>
        <source>&amp;Rename...</source>
        <translation>&amp;Umbenennen...</translation>
    </message>
    <message>
        <source>Gives the selected element or channel another name</source>
        <translation>Gibt dem ausgewählten Element oder Kanal einen anderen Namen</translation>
    </message>
    <message>
        <source>Bring For&amp;ward</source>
        <translation>Schrittweise nach &amp;vorn</translation>
    </message>
    <message>
        <source>Moves the element in front of the next one</source>
        <translation>Setzt das Element vor das nächste</translation>
    </message>
    <message>
        <source>Send &amp;Backward</source>
        <translation>Schrittweise nach &amp;hinten</translation>
    </message>
    <message>
        <source>Moves the element behind the one before</source>
        <translation>Setzt das Element hinter das vorige</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>Removes the selected element or channel</source>
        <translation>Entfernt das ausgewählte Element oder den Kanal</translation>
    </message>
    <message>
        <source>Cu&amp;t</source>
        <translation>&amp;Ausschneiden</translation>
    </message>
    <message>
        <source>Takes the selected keys to the clipboard</source>
        <translation>Schneidet die ausgewählten Keyframes in die Zwischenablage aus</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Copies the selected keys</source>
        <translation>Kopiert die ausgewählten Keyframes</translation>
    </message>
    <message>
        <source>&amp;Paste</source>
        <translation>&amp;Einfügen</translation>
    </message>
    <message>
        <source>Puts copied keys at the current time</source>
        <translation>Fügt kopierte Keyframes zur aktuellen Zeit ein</translation>
    </message>
    <message>
        <source>&amp;Duplicate</source>
        <translation>&amp;Duplizieren</translation>
    </message>
    <message>
        <source>Repeats the selected keys behind themselves</source>
        <translation>Wiederholt die ausgewählten Keyframes hinter sich selbst</translation>
    </message>
    <message>
        <source>De&amp;lete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>Removes the selected keys</source>
        <translation>Entfernt die ausgewählten Keyframes</translation>
    </message>
    <message>
        <source>Select &amp;All</source>
        <translation>Alle aus&amp;wählen</translation>
    </message>
    <message>
        <source>Selects every key of the channel</source>
        <translation>Wählt alle Keyframes des Kanals aus</translation>
    </message>
    <message>
        <source>Select &amp;None</source>
        <translation>Auswahl auf&amp;heben</translation>
    </message>
    <message>
        <source>Selects no key</source>
        <translation>Wählt keinen Keyframe aus</translation>
    </message>
    <message>
        <source>&amp;Invert Selection</source>
        <translation>Auswahl &amp;umkehren</translation>
    </message>
    <message>
        <source>Selects the other keys</source>
        <translation>Wählt die anderen Keyframes aus</translation>
    </message>
    <message>
        <source>Select Ne&amp;xt</source>
        <translation>&amp;Nächsten auswählen</translation>
    </message>
    <message>
        <source>Selects the next key</source>
        <translation>Wählt den nächsten Keyframe aus</translation>
    </message>
    <message>
        <source>Select Pre&amp;vious</source>
        <translation>&amp;Vorherigen auswählen</translation>
    </message>
    <message>
        <source>Selects the key before</source>
        <translation>Wählt den Keyframe davor aus</translation>
    </message>
    <message>
        <source>Later by a Frame</source>
        <translation>Einen Frame später</translation>
    </message>
    <message>
        <source>Moves the selected keys by a frame; ten with Shift</source>
        <translation>Verschiebt die ausgewählten Keyframes um einen Frame; mit Umschalt um zehn</translation>
    </message>
    <message>
        <source>Earlier by a Frame</source>
        <translation>Einen Frame früher</translation>
    </message>
    <message>
        <source>Moves the selected keys back by a frame; ten with Shift</source>
        <translation>Verschiebt die ausgewählten Keyframes um einen Frame zurück; mit Umschalt um zehn</translation>
    </message>
    <message>
        <source>Higher by a Step</source>
        <translation>Einen Schritt höher</translation>
    </message>
    <message>
        <source>Raises the selected keys by a hundredth of what is shown; a tenth with Shift</source>
        <translation>Hebt die ausgewählten Keyframes um ein Hundertstel des Sichtbaren; mit Umschalt um ein Zehntel</translation>
    </message>
    <message>
        <source>Lower by a Step</source>
        <translation>Einen Schritt tiefer</translation>
    </message>
    <message>
        <source>Lowers the selected keys by a hundredth of what is shown; a tenth with Shift</source>
        <translation>Senkt die ausgewählten Keyframes um ein Hundertstel des Sichtbaren; mit Umschalt um ein Zehntel</translation>
    </message>
    <message>
        <source>Later by Ten Frames</source>
        <translation>Zehn Frames später</translation>
    </message>
    <message>
        <source>Moves the selected keys by ten frames</source>
        <translation>Verschiebt die ausgewählten Keyframes um zehn Frames</translation>
    </message>
    <message>
        <source>Earlier by Ten Frames</source>
        <translation>Zehn Frames früher</translation>
    </message>
    <message>
        <source>Moves the selected keys back by ten frames</source>
        <translation>Verschiebt die ausgewählten Keyframes um zehn Frames zurück</translation>
    </message>
    <message>
        <source>Higher by Ten Steps</source>
        <translation>Zehn Schritte höher</translation>
    </message>
    <message>
        <source>Raises the selected keys by a tenth of what is shown</source>
        <translation>Hebt die ausgewählten Keyframes um ein Zehntel des Sichtbaren</translation>
    </message>
    <message>
        <source>Lower by Ten Steps</source>
        <translation>Zehn Schritte tiefer</translation>
    </message>
    <message>
        <source>Lowers the selected keys by a tenth of what is shown</source>
        <translation>Senkt die ausgewählten Keyframes um ein Zehntel des Sichtbaren</translation>
    </message>
    <message>
        <source>&amp;Set Key Here</source>
        <translation>Keyframe hier &amp;setzen</translation>
    </message>
    <message>
        <source>Sets a key on the curve at the current time</source>
        <translation>Setzt zur aktuellen Zeit einen Keyframe auf die Kurve</translation>
    </message>
    <message>
        <source>Exact Time and Val&amp;ue</source>
        <translation>&amp;Zeit und Wert eingeben</translation>
    </message>
    <message>
        <source>Goes to the fields for time and value of the selected keys</source>
        <translation>Geht zu den Feldern für Zeit und Wert der ausgewählten Keyframes</translation>
    </message>
    <message>
        <source>Snap to &amp;Grid</source>
        <translation>Am &amp;Raster einrasten</translation>
    </message>
    <message>
        <source>Dragged keys jump to half the steps of the grid</source>
        <translation>Gezogene Keyframes springen auf halbe Rasterschritte</translation>
    </message>
    <message>
        <source>Ele&amp;ments</source>
        <translation>&amp;Elemente</translation>
    </message>
    <message>
        <source>Shows or hides the list of elements</source>
        <translation>Zeigt oder verbirgt die Liste der Elemente</translation>
    </message>
    <message>
        <source>&amp;Stage</source>
        <translation>&amp;Bühne</translation>
    </message>
    <message>
        <source>Shows or hides the stage</source>
        <translation>Zeigt oder verbirgt die Bühne</translation>
    </message>
    <message>
        <source>T&amp;ransport</source>
        <translation>&amp;Transport</translation>
    </message>
    <message>
        <source>Shows or hides the transport bar</source>
        <translation>Zeigt oder verbirgt die Transportleiste</translation>
    </message>
    <message>
        <source>&amp;Curves</source>
        <translation>&amp;Kurven</translation>
    </message>
    <message>
        <source>Shows or hides the curve editor</source>
        <translation>Zeigt oder verbirgt den Kurveneditor</translation>
    </message>
    <message>
        <source>&amp;Inspectors</source>
        <translation>&amp;Inspektoren</translation>
    </message>
    <message>
        <source>Shows or hides the inspectors</source>
        <translation>Zeigt oder verbirgt die Inspektoren</translation>
    </message>
    <message>
        <source>&amp;History</source>
        <translation>&amp;Verlauf</translation>
    </message>
    <message>
        <source>Shows or hides the list of steps</source>
        <translation>Zeigt oder verbirgt die Liste der Schritte</translation>
    </message>
    <message>
        <source>Curves in a &amp;Window of Their Own</source>
        <translation>Kurven in eigenem &amp;Fenster</translation>
    </message>
    <message>
        <source>Takes the curve editor out of the window, or puts it back</source>
        <translation>Löst den Kurveneditor aus dem Fenster oder fügt ihn wieder ein</translation>
    </message>
    <message>
        <source>Frame &amp;All Keys</source>
        <translation>&amp;Alle Keyframes zeigen</translation>
    </message>
    <message>
        <source>Shows all keys of the curves</source>
        <translation>Zeigt alle Keyframes der Kurven</translation>
    </message>
    <message>
        <source>Frame Se&amp;lected Keys</source>
        <translation>Aus&amp;gewählte Keyframes zeigen</translation>
    </message>
    <message>
        <source>Shows the selected keys</source>
        <translation>Zeigt die ausgewählten Keyframes</translation>
    </message>
    <message>
        <source>Show All Cur&amp;ves of the Element</source>
        <translation>A&amp;lle Kurven des Elements zeigen</translation>
    </message>
    <message>
        <source>Draws the curves of the element&apos;s other channels too</source>
        <translation>Zeichnet auch die Kurven der anderen Kanäle des Elements</translation>
    </message>
    <message>
        <source>Hide &amp;Other Curves</source>
        <translation>An&amp;dere Kurven ausblenden</translation>
    </message>
    <message>
        <source>Draws only the curve that is edited</source>
        <translation>Zeichnet nur die Kurve, die bearbeitet wird</translation>
    </message>
    <message>
        <source>&amp;Zoom In</source>
        <translation>Ve&amp;rgrößern</translation>
    </message>
    <message>
        <source>Shows the stage larger</source>
        <translation>Zeigt die Bühne größer</translation>
    </message>
    <message>
        <source>Zoom Ou&amp;t</source>
        <translation>Verkleiner&amp;n</translation>
    </message>
    <message>
        <source>Shows the stage smaller</source>
        <translation>Zeigt die Bühne kleiner</translation>
    </message>
    <message>
        <source>Zoom to &amp;Fit</source>
        <translation>Bühne ein&amp;passen</translation>
    </message>
    <message>
        <source>Shows the whole stage</source>
        <translation>Zeigt die ganze Bühne</translation>
    </message>
    <message>
        <source>Actual Size (&amp;1:1)</source>
        <translation>Originalgröße (&amp;1:1)</translation>
    </message>
    <message>
        <source>One pixel of the stage on one of the screen</source>
        <translation>Ein Pixel der Bühne auf einem des Bildschirms</translation>
    </message>
    <message>
        <source>Stage Drawin&amp;g</source>
        <translation>Bühne &amp;zeichnen</translation>
    </message>
    <message>
        <source>What the stage is drawn with</source>
        <translation>Womit die Bühne gezeichnet wird</translation>
    </message>
    <message>
        <source>Languag&amp;e</source>
        <translation>&amp;Sprache</translation>
    </message>
    <message>
        <source>The language of the menus</source>
        <translation>Die Sprache der Menüs</translation>
    </message>
    <message>
        <source>F&amp;ull Screen</source>
        <translation>V&amp;ollbild</translation>
    </message>
    <message>
        <source>The window alone on the screen</source>
        <translation>Das Fenster allein auf dem Bildschirm</translation>
    </message>
    <message>
        <source>&amp;Play</source>
        <translation>Abs&amp;pielen</translation>
    </message>
    <message>
        <source>Plays or pauses</source>
        <translation>Spielt ab oder hält an</translation>
    </message>
    <message>
        <source>&amp;Next Frame</source>
        <translation>&amp;Nächster Frame</translation>
    </message>
    <message>
        <source>One frame on</source>
        <translation>Einen Frame weiter</translation>
    </message>
    <message>
        <source>Pre&amp;vious Frame</source>
        <translation>&amp;Vorheriger Frame</translation>
    </message>
    <message>
        <source>One frame back</source>
        <translation>Einen Frame zurück</translation>
    </message>
    <message>
        <source>Next &amp;Key</source>
        <translation>Nächster &amp;Keyframe</translation>
    </message>
    <message>
        <source>On to the next key of the channel</source>
        <translation>Weiter zum nächsten Keyframe des Kanals</translation>
    </message>
    <message>
        <source>Previous Ke&amp;y</source>
        <translation>Vorheriger Ke&amp;yframe</translation>
    </message>
    <message>
        <source>Back to the key before</source>
        <translation>Zurück zum Keyframe davor</translation>
    </message>
    <message>
        <source>To the &amp;Beginning</source>
        <translation>Zum &amp;Anfang</translation>
    </message>
    <message>
        <source>To the first frame of the range</source>
        <translation>Zum ersten Frame des Bereichs</translation>
    </message>
    <message>
        <source>To the &amp;End</source>
        <translation>Zum &amp;Ende</translation>
    </message>
    <message>
        <source>To the last frame of the range</source>
        <translation>Zum letzten Frame des Bereichs</translation>
    </message>
    <message>
        <source>&amp;Loop</source>
        <translation>&amp;Schleife</translation>
    </message>
    <message>
        <source>Begins again at the end</source>
        <translation>Beginnt am Ende von vorn</translation>
    </message>
    <message>
        <source>&amp;Tour</source>
        <translation>&amp;Rundgang</translation>
    </message>
    <message>
        <source>Walks through one edit</source>
        <translation>Führt durch eine Bearbeitung</translation>
    </message>
    <message>
        <source>&amp;Commands and Shortcuts</source>
        <translation>&amp;Befehle und Tastenkürzel</translation>
    </message>
    <message>
        <source>Lists every command</source>
        <translation>Listet alle Befehle auf</translation>
    </message>
    <message>
        <source>&amp;About kwedit</source>
        <translation>&amp;Über kwedit</translation>
    </message>
    <message>
        <source>Which version this is</source>
        <translation>Welche Version dies ist</translation>
    </message>
    <message>
        <source>A&amp;ppearance</source>
        <translation>Ersc&amp;heinungsbild</translation>
    </message>
    <message>
        <source>Whether the window is light or dark</source>
        <translation>Ob das Fenster hell oder dunkel ist</translation>
    </message>
</context>
<context>
    <name>KWEditCurvesPane</name>
    <message>
        <source>Curves</source>
        <translation>Kurven</translation>
    </message>
    <message>
        <source>Set Key</source>
        <translation>Keyframe setzen</translation>
    </message>
    <message>
        <source>Choose a channel in the list to see its curve.</source>
        <translation>Wählen Sie in der Liste einen Kanal, um seine Kurve zu sehen.</translation>
    </message>
    <message>
        <source>Nothing moves yet. Add a sprite in the Element menu, or drop pictures and movies onto the stage; the curves of its channels are here.</source>
        <translation>Noch bewegt sich nichts. Fügen Sie im Menü Element ein Sprite hinzu, oder ziehen Sie Bilder und Filme auf die Bühne; hier erscheinen die Kurven seiner Kanäle.</translation>
    </message>
</context>
<context>
    <name>KWEditDocument</name>
    <message>
        <source>Stage</source>
        <translation>Bühne</translation>
    </message>
    <message>
        <source>%1: it cannot be written in this form: %2</source>
        <translation>%1: Das Dokument kann in diesem Format nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>the document has no file yet</source>
        <translation>das Dokument hat noch keine Datei</translation>
    </message>
    <message>
        <source>%1: the document is read-only</source>
        <translation>%1: Das Dokument ist schreibgeschützt</translation>
    </message>
    <message>
        <source>%1: another program has changed the file</source>
        <translation>%1: Ein anderes Programm hat die Datei geändert</translation>
    </message>
    <message>
        <source>Add Element</source>
        <translation>Element hinzufügen</translation>
    </message>
    <message>
        <source>Add Sprite</source>
        <translation>Sprite hinzufügen</translation>
    </message>
    <message>
        <source>Remove Element</source>
        <translation>Element entfernen</translation>
    </message>
    <message>
        <source>Move Element</source>
        <translation>Element verschieben</translation>
    </message>
    <message>
        <source>Rename Element</source>
        <translation>Element umbenennen</translation>
    </message>
    <message>
        <source>Change Content</source>
        <translation>Inhalt ändern</translation>
    </message>
    <message>
        <source>Change Stage</source>
        <translation>Bühne ändern</translation>
    </message>
    <message>
        <source>Add Channel</source>
        <translation>Kanal hinzufügen</translation>
    </message>
    <message>
        <source>Remove Channel</source>
        <translation>Kanal entfernen</translation>
    </message>
    <message>
        <source>Rename Channel</source>
        <translation>Kanal umbenennen</translation>
    </message>
</context>
<context>
    <name>KWEditExporter</name>
    <message>
        <source>another export is under way</source>
        <translation>ein anderer Export läuft gerade</translation>
    </message>
</context>
<context>
    <name>KWEditLanguage</name>
    <message>
        <source>As the System</source>
        <translation>Wie das System</translation>
    </message>
</context>
<context>
    <name>KWEditOutlinePane</name>
    <message>
        <source>Elements</source>
        <translation>Elemente</translation>
    </message>
</context>
<context>
    <name>KWEditQuestions</name>
    <message>
        <source>Keyed archive, binary (*.kwdoc)</source>
        <translation>Schlüsselarchiv, binär (*.kwdoc)</translation>
    </message>
    <message>
        <source>Keyed archive, XML (*.kwdoc *.xml)</source>
        <translation>Schlüsselarchiv, XML (*.kwdoc *.xml)</translation>
    </message>
    <message>
        <source>Sequential archive (*.kwdoc *.typedstream)</source>
        <translation>Sequenzielles Archiv (*.kwdoc *.typedstream)</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Documents (*.kwdoc *.xml *.plist *.typedstream);;All files (*)</source>
        <translation>Dokumente (*.kwdoc *.xml *.plist *.typedstream);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>New from Files</source>
        <translation>Neu aus Dateien</translation>
    </message>
    <message>
        <source>Save the changes to %1?</source>
        <translation>Änderungen an %1 sichern?</translation>
    </message>
    <message>
        <source>Otherwise they are lost.</source>
        <translation>Sonst gehen sie verloren.</translation>
    </message>
    <message>
        <source>Recover</source>
        <translation>Wiederherstellen</translation>
    </message>
    <message>
        <source>Later</source>
        <translation>Später</translation>
    </message>
</context>
<context>
    <name>KWEditSpriteMove</name>
    <message>
        <source>Move</source>
        <translation>Verschieben</translation>
    </message>
    <message>
        <source>“%1” has no channels x and y to move it with.</source>
        <translation>„%1“ hat keine Kanäle x und y, um es zu verschieben.</translation>
    </message>
    <message>
        <source>“%1” has no channel %2 to move it with.</source>
        <translation>„%1“ hat keinen Kanal %2, um es zu verschieben.</translation>
    </message>
    <message>
        <source>%1 of “%2” cannot be set by hand.</source>
        <translation>%1 von „%2“ lässt sich nicht von Hand setzen.</translation>
    </message>
    <message>
        <source> and </source>
        <translation> und </translation>
    </message>
</context>
<context>
    <name>KWEditStageTiming</name>
    <message>
        <source>Change Frame Rate</source>
        <translation>Bildrate ändern</translation>
    </message>
    <message>
        <source>Change Range</source>
        <translation>Bereich ändern</translation>
    </message>
</context>
<context>
    <name>KWEditStageView</name>
    <message>
        <source>Stage</source>
        <translation>Bühne</translation>
    </message>
    <message>
        <source>The frame of the document at the current time</source>
        <translation>Der Frame des Dokuments zur aktuellen Zeit</translation>
    </message>
</context>
<context>
    <name>KWEditWindow</name>
    <message>
        <source>No copy could be kept for the case of a crash: %1</source>
        <translation>Für den Fall eines Absturzes konnte keine Kopie angelegt werden: %1</translation>
    </message>
    <message>
        <source>Untitled</source>
        <translation>Unbenannt</translation>
    </message>
    <message>
        <source>read-only</source>
        <translation>schreibgeschützt</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>&amp;Undo %1</source>
        <translation>&amp;Rückgängig: %1</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederherstellen</translation>
    </message>
    <message>
        <source>&amp;Redo %1</source>
        <translation>&amp;Wiederherstellen: %1</translation>
    </message>
    <message>
        <source>Clear List</source>
        <translation>Liste leeren</translation>
    </message>
    <message>
        <source>Sprite</source>
        <translation>Sprite</translation>
    </message>
    <message>
        <source>Add Sprites</source>
        <translation>Sprites hinzufügen</translation>
    </message>
    <message>
        <source>Remove Elements</source>
        <translation>Elemente entfernen</translation>
    </message>
    <message>
        <source>Rename Channel</source>
        <translation>Kanal umbenennen</translation>
    </message>
    <message>
        <source>Name:</source>
        <translation>Name:</translation>
    </message>
    <message>
        <source>Rename Element</source>
        <translation>Element umbenennen</translation>
    </message>
    <message>
        <source>&amp;Automatic</source>
        <translation>&amp;Automatisch</translation>
    </message>
    <message>
        <source>By the &amp;Processor</source>
        <translation>Mit dem &amp;Prozessor</translation>
    </message>
    <message>
        <source>With &amp;OpenGL</source>
        <translation>Mit &amp;OpenGL</translation>
    </message>
    <message>
        <source>OpenGL does not work here.</source>
        <translation>OpenGL funktioniert hier nicht.</translation>
    </message>
    <message>
        <source>The language changes when kwedit is started again.</source>
        <translation>Die Sprache ändert sich, wenn kwedit neu gestartet wird.</translation>
    </message>
    <message>
        <source>About kwedit</source>
        <translation>Über kwedit</translation>
    </message>
    <message>
        <source>&lt;b&gt;kwedit %1&lt;/b&gt;&lt;br&gt;Edits documents of animated sprites, with the views of KWBase.</source>
        <translation>&lt;b&gt;kwedit %1&lt;/b&gt;&lt;br&gt;Bearbeitet Dokumente mit animierten Sprites, mit den Ansichten von KWBase.</translation>
    </message>
    <message>
        <source>%1 cannot be opened.</source>
        <translation>%1 kann nicht geöffnet werden.</translation>
    </message>
    <message>
        <source>The file is read-only: save the document under another name to keep changes.</source>
        <translation>Die Datei ist schreibgeschützt: Sichern Sie das Dokument unter anderem Namen, um Änderungen zu behalten.</translation>
    </message>
    <message>
        <source>Recovered. Save the document to keep it.</source>
        <translation>Wiederhergestellt. Sichern Sie das Dokument, um es zu behalten.</translation>
    </message>
    <message>
        <source>The copy of a document cannot be opened.</source>
        <translation>Die Kopie eines Dokuments kann nicht geöffnet werden.</translation>
    </message>
    <message>
        <source>Another program has changed %1.</source>
        <translation>Ein anderes Programm hat %1 geändert.</translation>
    </message>
    <message>
        <source>Saving replaces what it has written.</source>
        <translation>Beim Sichern wird ersetzt, was es geschrieben hat.</translation>
    </message>
    <message>
        <source>Save Anyway</source>
        <translation>Trotzdem sichern</translation>
    </message>
    <message>
        <source>%1 cannot be saved.</source>
        <translation>%1 kann nicht gesichert werden.</translation>
    </message>
    <message>
        <source>Saved.</source>
        <translation>Gesichert.</translation>
    </message>
    <message>
        <source>In this form the document loses something.</source>
        <translation>In diesem Format verliert das Dokument etwas.</translation>
    </message>
    <message>
        <source>Saved a copy as %1.</source>
        <translation>Kopie als %1 gesichert.</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>Sichern unter</translation>
    </message>
    <message>
        <source>Save a Copy</source>
        <translation>Kopie sichern</translation>
    </message>
    <message>
        <source>Go back to the saved document?</source>
        <translation>Zum gesicherten Dokument zurückkehren?</translation>
    </message>
    <message>
        <source>Every change since then is lost.</source>
        <translation>Alle Änderungen seither gehen verloren.</translation>
    </message>
    <message>
        <source>Revert</source>
        <translation>Zurückkehren</translation>
    </message>
    <message>
        <source>this document</source>
        <translation>dieses Dokument</translation>
    </message>
    <message>
        <source>Add Sprite</source>
        <translation>Sprite hinzufügen</translation>
    </message>
    <message>
        <source>“%1” holds the settings of the stage.</source>
        <translation>„%1“ enthält die Einstellungen der Bühne.</translation>
    </message>
    <message>
        <source>Without it the stage has its usual size, backdrop and range.</source>
        <translation>Ohne dieses Element hat die Bühne ihre übliche Größe, ihren üblichen Hintergrund und Bereich.</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>There is nothing in this archive that kwedit knows.</source>
        <translation>In diesem Archiv ist nichts, was kwedit kennt.</translation>
    </message>
</context>
<context>
    <name>KWElementChannelsView</name>
    <message>
        <source>1 key</source>
        <translation>1 Keyframe</translation>
    </message>
    <message>
        <source>%1 keys</source>
        <translation>%1 Keyframes</translation>
    </message>
    <message>
        <source>Constant</source>
        <translation>Konstante</translation>
    </message>
    <message>
        <source>Expression</source>
        <translation>Ausdruck</translation>
    </message>
    <message>
        <source>Add Channel</source>
        <translation>Kanal hinzufügen</translation>
    </message>
    <message>
        <source>Remove Channel</source>
        <translation>Kanal entfernen</translation>
    </message>
    <message>
        <source>Rename Channel</source>
        <translation>Kanal umbenennen</translation>
    </message>
    <message>
        <source>Channels</source>
        <translation>Kanäle</translation>
    </message>
    <message>
        <source>Position x</source>
        <translation>Position x</translation>
    </message>
    <message>
        <source>Position y</source>
        <translation>Position y</translation>
    </message>
    <message>
        <source>Rotation</source>
        <translation>Drehung</translation>
    </message>
    <message>
        <source>Scale</source>
        <translation>Skalierung</translation>
    </message>
    <message>
        <source>Scale x</source>
        <translation>Skalierung x</translation>
    </message>
    <message>
        <source>Scale y</source>
        <translation>Skalierung y</translation>
    </message>
    <message>
        <source>Squash</source>
        <translation>Stauchung</translation>
    </message>
    <message>
        <source>Shear</source>
        <translation>Scherung</translation>
    </message>
    <message>
        <source>Opacity</source>
        <translation>Deckkraft</translation>
    </message>
    <message>
        <source>Red</source>
        <translation>Rot</translation>
    </message>
    <message>
        <source>Green</source>
        <translation>Grün</translation>
    </message>
    <message>
        <source>Blue</source>
        <translation>Blau</translation>
    </message>
    <message>
        <source>Radius</source>
        <translation>Radius</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Breite</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>Höhe</translation>
    </message>
    <message>
        <source>Movie time</source>
        <translation>Filmzeit</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Pan</source>
        <translation>Schwenk</translation>
    </message>
    <message>
        <source>Tilt</source>
        <translation>Neigung</translation>
    </message>
    <message>
        <source>Other…</source>
        <translation>Andere…</translation>
    </message>
</context>
<context>
    <name>KWElementInspector</name>
    <message>
        <source>Mixed</source>
        <translation>Verschieden</translation>
    </message>
    <message>
        <source>Nothing selected</source>
        <translation>Nichts ausgewählt</translation>
    </message>
    <message>
        <source>Channels</source>
        <translation>Kanäle</translation>
    </message>
    <message>
        <source>Choose a Picture or Movie</source>
        <translation>Bild oder Film wählen</translation>
    </message>
    <message>
        <source>Pictures and movies</source>
        <translation>Bilder und Filme</translation>
    </message>
    <message>
        <source>All files</source>
        <translation>Alle Dateien</translation>
    </message>
    <message>
        <source>Rectangle</source>
        <translation>Rechteck</translation>
    </message>
    <message>
        <source>Rounded rectangle</source>
        <translation>Abgerundetes Rechteck</translation>
    </message>
    <message>
        <source>Ellipse</source>
        <translation>Ellipse</translation>
    </message>
    <message>
        <source>Triangle</source>
        <translation>Dreieck</translation>
    </message>
    <message>
        <source>Diamond</source>
        <translation>Raute</translation>
    </message>
    <message>
        <source>Star</source>
        <translation>Stern</translation>
    </message>
    <message>
        <source>Glow</source>
        <translation>Lichtschein</translation>
    </message>
    <message>
        <source>Ball</source>
        <translation>Ball</translation>
    </message>
    <message>
        <source>The name of the element</source>
        <translation>Der Name des Elements</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>What the element shows</source>
        <translation>Was das Element zeigt</translation>
    </message>
    <message>
        <source>Nothing</source>
        <translation>Nichts</translation>
    </message>
    <message>
        <source>Picture or movie…</source>
        <translation>Bild oder Film…</translation>
    </message>
    <message>
        <source>Content</source>
        <translation>Inhalt</translation>
    </message>
    <message>
        <source>Choose a File</source>
        <translation>Datei wählen</translation>
    </message>
    <message>
        <source>Choose another picture or movie</source>
        <translation>Ein anderes Bild oder einen anderen Film wählen</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>In proportion to the other one, or of natural size, where it is 0</source>
        <translation>Im Verhältnis zur anderen, oder in natürlicher Größe, wenn 0</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Breite</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>Höhe</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Farbe</translation>
    </message>
    <message>
        <source>The color of the shape</source>
        <translation>Die Farbe der Form</translation>
    </message>
    <message>
        <source>Second color</source>
        <translation>Zweite Farbe</translation>
    </message>
    <message>
        <source>The second color of the shape, where it has one</source>
        <translation>Die zweite Farbe der Form, wenn sie eine hat</translation>
    </message>
    <message>
        <source>Colors</source>
        <translation>Farben</translation>
    </message>
    <message>
        <source>Pivot x</source>
        <translation>Drehpunkt x</translation>
    </message>
    <message>
        <source>What it turns about: 0 at the left, 1 at the right</source>
        <translation>Worum es sich dreht: 0 links, 1 rechts</translation>
    </message>
    <message>
        <source>Pivot y</source>
        <translation>Drehpunkt y</translation>
    </message>
    <message>
        <source>What it turns about: 0 at the top, 1 at the bottom</source>
        <translation>Worum es sich dreht: 0 oben, 1 unten</translation>
    </message>
    <message>
        <source>Pivot</source>
        <translation>Drehpunkt</translation>
    </message>
    <message>
        <source>How dark a shadow it throws on the ground</source>
        <translation>Wie dunkel sein Schatten auf dem Boden ist</translation>
    </message>
    <message>
        <source>Shadow</source>
        <translation>Schatten</translation>
    </message>
    <message>
        <source>How it covers what is behind it</source>
        <translation>Wie es verdeckt, was dahinter ist</translation>
    </message>
    <message>
        <source>Normal</source>
        <translation>Normal</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Addieren</translation>
    </message>
    <message>
        <source>Multiply</source>
        <translation>Multiplizieren</translation>
    </message>
    <message>
        <source>Screen</source>
        <translation>Negativ multiplizieren</translation>
    </message>
    <message>
        <source>Blending</source>
        <translation>Füllmethode</translation>
    </message>
    <message>
        <source>Loop movie</source>
        <translation>Film wiederholen</translation>
    </message>
    <message>
        <source>The movie begins again at its end</source>
        <translation>Der Film beginnt an seinem Ende von vorn</translation>
    </message>
    <message>
        <source>Change Size</source>
        <translation>Größe ändern</translation>
    </message>
    <message>
        <source>Change Color</source>
        <translation>Farbe ändern</translation>
    </message>
    <message>
        <source>Change Pivot</source>
        <translation>Drehpunkt ändern</translation>
    </message>
    <message>
        <source>Change Shadow</source>
        <translation>Schatten ändern</translation>
    </message>
    <message>
        <source>Change Blending</source>
        <translation>Füllmethode ändern</translation>
    </message>
    <message>
        <source>Change Looping</source>
        <translation>Wiederholen ändern</translation>
    </message>
    <message>
        <source>%1 elements</source>
        <translation>%1 Elemente</translation>
    </message>
    <message>
        <source>Natural</source>
        <translation>Auto</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>Change Content</source>
        <translation>Inhalt ändern</translation>
    </message>
</context>
<context>
    <name>KWEmbeddedChannelController</name>
    <message>
        <source>%1: channelOVContainer is not the outermost widget</source>
        <translation>%1: channelOVContainer ist nicht das äußerste Widget</translation>
    </message>
    <message>
        <source>Channel</source>
        <translation>Kanal</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>Channels</source>
        <translation>Kanäle</translation>
    </message>
</context>
<context>
    <name>KWExportDialog</name>
    <message>
        <source>1 second left</source>
        <translation>noch 1 Sekunde</translation>
    </message>
    <message numerus="yes">
        <source>%n seconds left</source>
        <translation>
            <numerusform>noch %n Sekunde</numerusform>
            <numerusform>noch %n Sekunden</numerusform>
        </translation>
    </message>
    <message>
        <source>%1:%2 minutes left</source>
        <translation>noch %1:%2 Minuten</translation>
    </message>
    <message>
        <source>Export Frames</source>
        <translation>Frames exportieren</translation>
    </message>
    <message>
        <source>Export Movie</source>
        <translation>Film exportieren</translation>
    </message>
    <message>
        <source>Export Values</source>
        <translation>Werte exportieren</translation>
    </message>
    <message>
        <source>Destination</source>
        <translation>Ziel</translation>
    </message>
    <message>
        <source>Bro&amp;wse...</source>
        <translation>&amp;Durchsuchen...</translation>
    </message>
    <message>
        <source>First frame</source>
        <translation>Erster Frame</translation>
    </message>
    <message>
        <source>Last frame</source>
        <translation>Letzter Frame</translation>
    </message>
    <message>
        <source>&amp;Folder:</source>
        <translation>&amp;Ordner:</translation>
    </message>
    <message>
        <source>&amp;File:</source>
        <translation>Da&amp;tei:</translation>
    </message>
    <message>
        <source>F&amp;rames:</source>
        <translation>&amp;Frames:</translation>
    </message>
    <message>
        <source>Width in pixels</source>
        <translation>Breite in Pixeln</translation>
    </message>
    <message>
        <source>Height in pixels</source>
        <translation>Höhe in Pixeln</translation>
    </message>
    <message>
        <source>&amp;Size:</source>
        <translation>&amp;Größe:</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>&amp;Export</source>
        <translation>&amp;Exportieren</translation>
    </message>
    <message>
        <source>Movies are written by ffmpeg, which is not installed here.</source>
        <translation>Filme werden von ffmpeg geschrieben, das hier nicht installiert ist.</translation>
    </message>
    <message>
        <source>untitled</source>
        <translation>unbenannt</translation>
    </message>
    <message>
        <source>Folder for the Frames</source>
        <translation>Ordner für die Frames</translation>
    </message>
    <message>
        <source>Movie File</source>
        <translation>Filmdatei</translation>
    </message>
    <message>
        <source>Movies (*.mp4 *.mov *.mkv *.webm *.gif)</source>
        <translation>Filme (*.mp4 *.mov *.mkv *.webm *.gif)</translation>
    </message>
    <message>
        <source>File for the Values</source>
        <translation>Datei für die Werte</translation>
    </message>
    <message>
        <source>Values (*.csv *.json *.jsonl)</source>
        <translation>Werte (*.csv *.json *.jsonl)</translation>
    </message>
    <message>
        <source>Say where to export to.</source>
        <translation>Geben Sie an, wohin exportiert werden soll.</translation>
    </message>
    <message>
        <source>Beginning</source>
        <translation>Beginnt</translation>
    </message>
    <message>
        <source>%1 of %2 frames</source>
        <translation>%1 von %2 Frames</translation>
    </message>
    <message>
        <source>Exported to %1</source>
        <translation>Exportiert nach %1</translation>
    </message>
    <message>
        <source>Canceled</source>
        <translation>Abgebrochen</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Schließen</translation>
    </message>
</context>
<context>
    <name>KWFrameExport</name>
    <message>
        <source>a frame could not be packed as PNG</source>
        <translation>ein Frame konnte nicht als PNG gepackt werden</translation>
    </message>
    <message>
        <source>the program ffmpeg, which makes movies, is not here</source>
        <translation>das Programm ffmpeg, das Filme erzeugt, ist nicht vorhanden</translation>
    </message>
    <message>
        <source>ffmpeg failed</source>
        <translation>ffmpeg ist fehlgeschlagen</translation>
    </message>
    <message>
        <source>the folder cannot be made</source>
        <translation>der Ordner kann nicht angelegt werden</translation>
    </message>
    <message>
        <source>there is no memory for a frame of that size</source>
        <translation>für einen Frame dieser Größe fehlt der Speicher</translation>
    </message>
</context>
<context>
    <name>KWHistoryPanel</name>
    <message>
        <source>History</source>
        <translation>Verlauf</translation>
    </message>
    <message>
        <source>New document</source>
        <translation>Neues Dokument</translation>
    </message>
    <message>
        <source>As opened</source>
        <translation>Wie geöffnet</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Bearbeitung</translation>
    </message>
</context>
<context>
    <name>KWImageEditorView</name>
    <message>
        <source>The image “%1” cannot be shown: %2.</source>
        <translation>Das Bild „%1“ kann nicht gezeigt werden: %2.</translation>
    </message>
    <message>
        <source>it is not a file</source>
        <translation>es ist keine Datei</translation>
    </message>
    <message>
        <source>The image of %1 x %2 pixels is too large for OpenGL here.</source>
        <translation>Das Bild mit %1 x %2 Pixeln ist hier zu groß für OpenGL.</translation>
    </message>
    <message>
        <source>The movie of %1 x %2 pixels is too large for OpenGL here.</source>
        <translation>Der Film mit %1 x %2 Pixeln ist hier zu groß für OpenGL.</translation>
    </message>
</context>
<context>
    <name>KWInspectorPanel</name>
    <message>
        <source>Inspectors</source>
        <translation>Inspektoren</translation>
    </message>
    <message>
        <source>Element</source>
        <translation>Element</translation>
    </message>
    <message>
        <source>Document</source>
        <translation>Dokument</translation>
    </message>
    <message>
        <source>Transport</source>
        <translation>Transport</translation>
    </message>
    <message>
        <source>Units</source>
        <translation>Einheiten</translation>
    </message>
</context>
<context>
    <name>KWKeyCommands</name>
    <message>
        <source>The keys cannot be moved that far.</source>
        <translation>Die Keyframes können nicht so weit verschoben werden.</translation>
    </message>
    <message>
        <source>The values would become too large.</source>
        <translation>Die Werte würden zu groß.</translation>
    </message>
    <message>
        <source>Move Keys</source>
        <translation>Keyframes verschieben</translation>
    </message>
    <message>
        <source>A key needs a time that is a number.</source>
        <translation>Ein Keyframe braucht eine Zahl als Zeit.</translation>
    </message>
    <message>
        <source>Move Key</source>
        <translation>Keyframe verschieben</translation>
    </message>
    <message>
        <source>A key needs a value that is a number.</source>
        <translation>Ein Keyframe braucht eine Zahl als Wert.</translation>
    </message>
    <message>
        <source>Change Value</source>
        <translation>Wert ändern</translation>
    </message>
    <message>
        <source>A shape needs a number.</source>
        <translation>Eine Form braucht eine Zahl.</translation>
    </message>
    <message>
        <source>Change Curve Shape</source>
        <translation>Kurvenform ändern</translation>
    </message>
    <message>
        <source>Reset Curve Shape</source>
        <translation>Kurvenform zurücksetzen</translation>
    </message>
    <message>
        <source>Delete Keys</source>
        <translation>Keyframes löschen</translation>
    </message>
    <message>
        <source>The keys would come to be too far away.</source>
        <translation>Die Keyframes kämen zu weit weg zu liegen.</translation>
    </message>
    <message>
        <source>Duplicate Keys</source>
        <translation>Keyframes duplizieren</translation>
    </message>
    <message>
        <source>Cut Keys</source>
        <translation>Keyframes ausschneiden</translation>
    </message>
    <message>
        <source>Paste Keys</source>
        <translation>Keyframes einfügen</translation>
    </message>
    <message>
        <source>The keys on the clipboard are damaged.</source>
        <translation>Die Keyframes in der Zwischenablage sind beschädigt.</translation>
    </message>
    <message>
        <source>The keys on the clipboard are from another version of the program.</source>
        <translation>Die Keyframes in der Zwischenablage stammen aus einer anderen Version des Programms.</translation>
    </message>
    <message>
        <source>Line %1 on the clipboard is not a time and a value.</source>
        <translation>Zeile %1 in der Zwischenablage ist keine Zeit mit einem Wert.</translation>
    </message>
    <message>
        <source>Line %1 on the clipboard has a number that is too large.</source>
        <translation>Zeile %1 in der Zwischenablage enthält eine zu große Zahl.</translation>
    </message>
    <message>
        <source>There are no keys on the clipboard.</source>
        <translation>In der Zwischenablage sind keine Keyframes.</translation>
    </message>
</context>
<context>
    <name>KWKeyEntryField</name>
    <message>
        <source>mixed</source>
        <translation>versch.</translation>
    </message>
</context>
<context>
    <name>KWKeyEntryPanel</name>
    <message>
        <source>Selected keys</source>
        <translation>Ausgewählte Keyframes</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>Frame</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>In seconds, or frames as in “12f”; “+=0.5” moves each key</source>
        <translation>In Sekunden, oder in Frames wie „12f“; „+=0.5“ verschiebt jeden Keyframe</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>“+=0.5” moves each key</source>
        <translation>„+=0.5“ verschiebt jeden Keyframe</translation>
    </message>
    <message>
        <source>Tension</source>
        <translation>Spannung</translation>
    </message>
    <message>
        <source>Bias</source>
        <translation>Neigung</translation>
    </message>
    <message>
        <source>Continuity</source>
        <translation>Kontinuität</translation>
    </message>
    <message>
        <source>1 is tight, 0 is smooth, -1 is round</source>
        <translation>1 ist straff, 0 ist glatt, -1 ist rund</translation>
    </message>
    <message>
        <source>Other than 0, there is a corner at the key</source>
        <translation>Wenn nicht 0, ist am Keyframe eine Ecke</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Makes tension, bias and continuity 0</source>
        <translation>Setzt Spannung, Neigung und Kontinuität auf 0</translation>
    </message>
    <message>
        <source>Reset shape</source>
        <translation>Form zurücksetzen</translation>
    </message>
    <message>
        <source>No keys</source>
        <translation>Keine Keyframes</translation>
    </message>
    <message>
        <source>1 key</source>
        <translation>1 Keyframe</translation>
    </message>
    <message numerus="yes">
        <source>%n keys</source>
        <translation>
            <numerusform>%n Keyframe</numerusform>
            <numerusform>%n Keyframes</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 f</source>
        <comment>a frame</comment>
        <translation>%1 f</translation>
    </message>
    <message>
        <source>%1–%2 f</source>
        <comment>frames</comment>
        <translation>%1–%2 f</translation>
    </message>
    <message>
        <source>1 leans towards the key before, -1 towards the one after</source>
        <translation>1 neigt zum Keyframe davor, -1 zu dem danach</translation>
    </message>
</context>
<context>
    <name>KWMovie</name>
    <message>
        <source>The movie “%1” cannot be shown: %2.</source>
        <translation>Der Film „%1“ kann nicht gezeigt werden: %2.</translation>
    </message>
    <message>
        <source>no frame can be decoded</source>
        <translation>kein Frame kann dekodiert werden</translation>
    </message>
    <message>
        <source>its frames cannot be converted</source>
        <translation>seine Frames können nicht umgewandelt werden</translation>
    </message>
    <message>
        <source>it is cut off after %1 s</source>
        <translation>er bricht nach %1 s ab</translation>
    </message>
    <message>
        <source>it is damaged after %1 s: %2</source>
        <translation>er ist nach %1 s beschädigt: %2</translation>
    </message>
    <message>
        <source>it is not a file</source>
        <translation>es ist keine Datei</translation>
    </message>
    <message>
        <source>the file is empty</source>
        <translation>die Datei ist leer</translation>
    </message>
    <message>
        <source>no movie is recognised in it</source>
        <translation>darin wird kein Film erkannt</translation>
    </message>
    <message>
        <source>it has no video</source>
        <translation>er enthält kein Video</translation>
    </message>
    <message>
        <source>its video is of an unknown kind</source>
        <translation>sein Video ist von unbekannter Art</translation>
    </message>
    <message>
        <source>there is no decoder for its video, which is %1</source>
        <translation>für sein Video (%1) gibt es keinen Dekoder</translation>
    </message>
    <message>
        <source>its video, which is %1, cannot be decoded: %2</source>
        <translation>sein Video (%1) kann nicht dekodiert werden: %2</translation>
    </message>
    <message>
        <source>its video has no times</source>
        <translation>sein Video hat keine Zeitangaben</translation>
    </message>
    <message>
        <source>its video, which is %1, has no frame that can be decoded</source>
        <translation>sein Video (%1) hat keinen Frame, der dekodiert werden kann</translation>
    </message>
</context>
<context>
    <name>KWNewChannelDialog</name>
    <message>
        <source>New Channel</source>
        <translation>Neuer Kanal</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Länge</translation>
    </message>
    <message>
        <source>Angle</source>
        <translation>Winkel</translation>
    </message>
    <message>
        <source>&amp;Name</source>
        <translation>&amp;Name</translation>
    </message>
    <message>
        <source>&amp;Group</source>
        <translation>&amp;Gruppe</translation>
    </message>
    <message>
        <source>&amp;Unit</source>
        <translation>&amp;Einheit</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
</context>
<context>
    <name>KWShortcutsDialog</name>
    <message>
        <source>Commands and Shortcuts</source>
        <translation>Befehle und Tastenkürzel</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Commands</source>
        <translation>Befehle</translation>
    </message>
    <message>
        <source>Command</source>
        <translation>Befehl</translation>
    </message>
    <message>
        <source>Shortcut</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>What it does</source>
        <translation>Was er tut</translation>
    </message>
</context>
<context>
    <name>KWSprite</name>
    <message>
        <source>%1, channel %2: it cannot be evaluated: %3</source>
        <translation>%1, Kanal %2: Er kann nicht ausgewertet werden: %3</translation>
    </message>
    <message>
        <source>%1: there is no such file</source>
        <translation>%1: Diese Datei gibt es nicht</translation>
    </message>
</context>
<context>
    <name>KWTour</name>
    <message>
        <source>&amp;End Tour</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Back</source>
        <translation>&amp;Zurück</translation>
    </message>
    <message>
        <source>The stage</source>
        <translation>Die Bühne</translation>
    </message>
    <message>
        <source>This is what the document shows at the current time. Click a sprite to select it, drag it to move it, turn the wheel to zoom.</source>
        <translation>Das zeigt das Dokument zur aktuellen Zeit. Klicken Sie ein Sprite an, um es auszuwählen, ziehen Sie es, um es zu verschieben, drehen Sie das Rad, um zu zoomen.</translation>
    </message>
    <message>
        <source>Let it run</source>
        <translation>Ablaufen lassen</translation>
    </message>
    <message>
        <source>Press Space, or the play button. Drag in the ruler to go to any time.</source>
        <translation>Drücken Sie die Leertaste oder den Abspielknopf. Ziehen Sie im Lineal, um zu einer beliebigen Zeit zu gehen.</translation>
    </message>
    <message>
        <source>Choose a channel</source>
        <translation>Einen Kanal wählen</translation>
    </message>
    <message>
        <source>A channel is a number that changes with the time, such as the height of a ball. Select one here; its value can be typed anew beside it.</source>
        <translation>Ein Kanal ist eine Zahl, die sich mit der Zeit ändert, etwa die Höhe eines Balls. Wählen Sie hier einen aus; sein Wert lässt sich daneben neu eingeben.</translation>
    </message>
    <message>
        <source>Change the curve</source>
        <translation>Die Kurve ändern</translation>
    </message>
    <message>
        <source>Drag a key up or down. The stage follows. With Escape you take a drag back; the wheel zooms here too.</source>
        <translation>Ziehen Sie einen Keyframe nach oben oder unten. Die Bühne folgt. Mit Esc nehmen Sie ein Ziehen zurück; das Rad zoomt auch hier.</translation>
    </message>
    <message>
        <source>Take it back</source>
        <translation>Zurücknehmen</translation>
    </message>
    <message>
        <source>Press Ctrl+Z: each gesture is one step. View &gt; History lists them all.</source>
        <translation>Drücken Sie Strg+Z: Jede Geste ist ein Schritt. Ansicht &gt; Verlauf listet alle auf.</translation>
    </message>
    <message>
        <source>That is one edit</source>
        <translation>Das ist eine Bearbeitung</translation>
    </message>
    <message>
        <source>Help &gt; Commands and Shortcuts lists everything else. File &gt; Export writes frames, a movie or values.</source>
        <translation>Hilfe &gt; Befehle und Tastenkürzel listet alles Weitere auf. Datei &gt; exportieren schreibt Frames, einen Film oder Werte.</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>&amp;Done</source>
        <translation>&amp;Fertig</translation>
    </message>
    <message>
        <source>&amp;Skip</source>
        <translation>Über&amp;springen</translation>
    </message>
    <message>
        <source>&amp;Next</source>
        <translation>&amp;Weiter</translation>
    </message>
</context>
<context>
    <name>KWTransportBar</name>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>The current time. Type seconds, minutes:seconds, or frames with an f</source>
        <translation>Die aktuelle Zeit. Geben Sie Sekunden, Minuten:Sekunden oder Frames mit einem f ein</translation>
    </message>
    <message>
        <source>Frame rate</source>
        <translation>Bildrate</translation>
    </message>
    <message>
        <source>Frames a second</source>
        <translation>Frames pro Sekunde</translation>
    </message>
    <message>
        <source>fps</source>
        <translation>fps</translation>
    </message>
    <message>
        <source>Measured rate</source>
        <translation>Gemessene Bildrate</translation>
    </message>
    <message>
        <source>Frames shown a second, and frames left out since playing began</source>
        <translation>Gezeigte Frames pro Sekunde, und seit Beginn der Wiedergabe ausgelassene</translation>
    </message>
    <message>
        <source>%1 fps, %2 dropped</source>
        <translation>%1 fps, %2 ausgelassen</translation>
    </message>
    <message>
        <source>To Beginning</source>
        <translation>Zum Anfang</translation>
    </message>
    <message>
        <source>Go to the first frame</source>
        <translation>Zum ersten Frame gehen</translation>
    </message>
    <message>
        <source>Step Back</source>
        <translation>Schritt zurück</translation>
    </message>
    <message>
        <source>Go one frame back</source>
        <translation>Einen Frame zurückgehen</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Step Forward</source>
        <translation>Schritt vor</translation>
    </message>
    <message>
        <source>Go one frame forward</source>
        <translation>Einen Frame vorgehen</translation>
    </message>
    <message>
        <source>To End</source>
        <translation>Zum Ende</translation>
    </message>
    <message>
        <source>Go to the last frame</source>
        <translation>Zum letzten Frame gehen</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Schleife</translation>
    </message>
    <message>
        <source>Begin again at the end of the range</source>
        <translation>Am Ende des Bereichs von vorn beginnen</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>%1 fps</source>
        <translation>%1 fps</translation>
    </message>
    <message>
        <source>f</source>
        <translation>f</translation>
    </message>
    <message>
        <source>s</source>
        <translation>s</translation>
    </message>
    <message>
        <source>Frames</source>
        <translation>Frames</translation>
    </message>
    <message>
        <source>Seconds</source>
        <translation>Sekunden</translation>
    </message>
    <message>
        <source>Times are frames; click for seconds</source>
        <translation>Zeiten sind Frames; klicken für Sekunden</translation>
    </message>
    <message>
        <source>Times are seconds; click for frames</source>
        <translation>Zeiten sind Sekunden; klicken für Frames</translation>
    </message>
</context>
<context>
    <name>KWTransportInspector</name>
    <message>
        <source>Frame rate</source>
        <translation>Bildrate</translation>
    </message>
    <message>
        <source>Frames a second</source>
        <translation>Frames pro Sekunde</translation>
    </message>
    <message>
        <source>From</source>
        <translation>Von</translation>
    </message>
    <message>
        <source>Where the range to play and to export begins</source>
        <translation>Wo der Bereich beginnt, der abgespielt und exportiert wird</translation>
    </message>
    <message>
        <source>To</source>
        <translation>Bis</translation>
    </message>
    <message>
        <source>Where the range to play and to export ends</source>
        <translation>Wo der Bereich endet, der abgespielt und exportiert wird</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Schleife</translation>
    </message>
    <message>
        <source>Begin again at the end of the range</source>
        <translation>Am Ende des Bereichs von vorn beginnen</translation>
    </message>
    <message>
        <source>fps</source>
        <translation>fps</translation>
    </message>
    <message>
        <source>Rate</source>
        <translation>Bildrate</translation>
    </message>
    <message>
        <source>to</source>
        <translation>bis</translation>
    </message>
    <message>
        <source>Range</source>
        <translation>Bereich</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Dauer</translation>
    </message>
    <message>
        <source>Playback</source>
        <translation>Wiedergabe</translation>
    </message>
    <message>
        <source>Dropped</source>
        <translation>Ausgelassen</translation>
    </message>
    <message>
        <source>%1 s, %2 frames</source>
        <translation>%1 s, %2 Frames</translation>
    </message>
    <message>
        <source>Stopped</source>
        <translation>Angehalten</translation>
    </message>
    <message>
        <source>%1 of %2 fps</source>
        <translation>%1 von %2 fps</translation>
    </message>
    <message>
        <source>%1 frames</source>
        <translation>%1 Frames</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
</context>
<context>
    <name>KWTransportRuler</name>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Drag to scrub; with Alt between frames</source>
        <translation>Ziehen, um durch die Zeit zu fahren; mit Alt auch zwischen Frames</translation>
    </message>
</context>
<context>
    <name>KWUnitsInspector</name>
    <message>
        <source>The unit that lengths are shown in</source>
        <translation>Die Einheit, in der Längen gezeigt werden</translation>
    </message>
    <message>
        <source>The unit that angles are shown in</source>
        <translation>Die Einheit, in der Winkel gezeigt werden</translation>
    </message>
    <message>
        <source>Lengths</source>
        <translation>Längen</translation>
    </message>
    <message>
        <source>Angles</source>
        <translation>Winkel</translation>
    </message>
</context>
<context>
    <name>KWValueText</name>
    <message>
        <source>“%1” is too large.</source>
        <translation>„%1“ ist zu groß.</translation>
    </message>
    <message>
        <source>“%1” is not a number.</source>
        <translation>„%1“ ist keine Zahl.</translation>
    </message>
    <message>
        <source>“%1” is not a number: the decimal sign is a point.</source>
        <translation>„%1“ ist keine Zahl: Das Dezimalzeichen ist ein Punkt.</translation>
    </message>
    <message>
        <source>“%1” is not a number alone, and this value has no unit.</source>
        <translation>„%1“ ist keine Zahl allein, und dieser Wert hat keine Einheit.</translation>
    </message>
    <message>
        <source>“%1” is not a number with a known unit.</source>
        <translation>„%1“ ist keine Zahl mit einer bekannten Einheit.</translation>
    </message>
</context>
<context>
    <name>channelEditorPanel</name>
    <message>
        <source>Channels</source>
        <translation>Kanäle</translation>
    </message>
    <message>
        <source>What the mouse does in the curve</source>
        <translation>Was die Maus in der Kurve tut</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>Werkzeuge</translation>
    </message>
    <message>
        <source>Select keys and move them. Shift adds to the selection.</source>
        <translation>Keyframes auswählen und verschieben. Umschalt erweitert die Auswahl.</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>Auswahl</translation>
    </message>
    <message>
        <source>&amp;Select</source>
        <translation>&amp;Auswahl</translation>
    </message>
    <message>
        <source>Click to add a key, and drag to move it.</source>
        <translation>Klicken, um einen Keyframe zu setzen; ziehen, um ihn zu verschieben.</translation>
    </message>
    <message>
        <source>Add Key</source>
        <translation>Keyframe setzen</translation>
    </message>
    <message>
        <source>&amp;Add Key</source>
        <translation>&amp;Setzen</translation>
    </message>
    <message>
        <source>Drag to move what is shown. With Shift, drag to zoom.</source>
        <translation>Ziehen, um den Ausschnitt zu verschieben. Mit Umschalt ziehen, um zu zoomen.</translation>
    </message>
    <message>
        <source>Pan</source>
        <translation>Schieben</translation>
    </message>
    <message>
        <source>&amp;Pan</source>
        <translation>S&amp;chieben</translation>
    </message>
    <message>
        <source>Moved keys jump to half the steps of the grid</source>
        <translation>Verschobene Keyframes springen auf halbe Rasterschritte</translation>
    </message>
    <message>
        <source>S&amp;nap</source>
        <translation>Einras&amp;ten</translation>
    </message>
    <message>
        <source>What is animated follows while keys are dragged</source>
        <translation>Das Animierte folgt, während Keyframes gezogen werden</translation>
    </message>
    <message>
        <source>&amp;Live</source>
        <translation>&amp;Live</translation>
    </message>
    <message>
        <source>&amp;Grid:</source>
        <translation>&amp;Raster:</translation>
    </message>
    <message>
        <source>How fine the grid is</source>
        <translation>Wie fein das Raster ist</translation>
    </message>
    <message>
        <source>Grid resolution</source>
        <translation>Rasterauflösung</translation>
    </message>
    <message>
        <source>T&amp;ype:</source>
        <translation>T&amp;yp:</translation>
    </message>
    <message>
        <source>What the channel is made of. Another type starts afresh; undo brings the old one back.</source>
        <translation>Woraus der Kanal besteht. Ein anderer Typ fängt neu an; Rückgängig bringt den alten zurück.</translation>
    </message>
    <message>
        <source>Channel type</source>
        <translation>Kanaltyp</translation>
    </message>
    <message>
        <source>Keyframes</source>
        <translation>Keyframes</translation>
    </message>
    <message>
        <source>Expression</source>
        <translation>Ausdruck</translation>
    </message>
    <message>
        <source>Constant</source>
        <translation>Konstante</translation>
    </message>
    <message>
        <source>Copy the channel</source>
        <translation>Den Kanal kopieren</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Put the copied channel in this one&apos;s place</source>
        <translation>Den kopierten Kanal an die Stelle von diesem setzen</translation>
    </message>
    <message>
        <source>Past&amp;e</source>
        <translation>&amp;Einfügen</translation>
    </message>
    <message>
        <source>Show all keys of the channel</source>
        <translation>Alle Keyframes des Kanals zeigen</translation>
    </message>
    <message>
        <source>&amp;Fit</source>
        <translation>Ein&amp;passen</translation>
    </message>
    <message>
        <source>The channel to be edited is the selected one. A click on a square, or Space, shows the channel&apos;s curve behind it as well.</source>
        <translation>Bearbeitet wird der ausgewählte Kanal. Ein Klick auf ein Quadrat oder die Leertaste zeigt die Kurve des Kanals zusätzlich dahinter.</translation>
    </message>
    <message>
        <source>Elements and channels</source>
        <translation>Elemente und Kanäle</translation>
    </message>
    <message>
        <source>Curve</source>
        <translation>Kurve</translation>
    </message>
    <message>
        <source>Choose a channel in the list.</source>
        <translation>Wählen Sie einen Kanal in der Liste.</translation>
    </message>
    <message>
        <source>&amp;Interpolation:</source>
        <translation>&amp;Interpolation:</translation>
    </message>
    <message>
        <source>How values run from key to key</source>
        <translation>Wie die Werte von Keyframe zu Keyframe laufen</translation>
    </message>
    <message>
        <source>Interpolation</source>
        <translation>Interpolation</translation>
    </message>
    <message>
        <source>Hermite</source>
        <translation>Hermite</translation>
    </message>
    <message>
        <source>Linear</source>
        <translation>Linear</translation>
    </message>
    <message>
        <source>Step</source>
        <translation>Stufen</translation>
    </message>
    <message>
        <source>&amp;Repeat:</source>
        <translation>Wie&amp;derholung:</translation>
    </message>
    <message>
        <source>What happens before the first key and after the last</source>
        <translation>Was vor dem ersten und nach dem letzten Keyframe geschieht</translation>
    </message>
    <message>
        <source>Repeat</source>
        <translation>Wiederholung</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Ohne</translation>
    </message>
    <message>
        <source>Cycle</source>
        <translation>Zyklus</translation>
    </message>
    <message>
        <source>Ping-Pong</source>
        <translation>Ping-Pong</translation>
    </message>
    <message>
        <source>&amp;Tension:</source>
        <translation>Spannun&amp;g:</translation>
    </message>
    <message>
        <source>How tightly the curve turns at the selected keys: -1 round, 1 sharp</source>
        <translation>Wie eng die Kurve an den ausgewählten Keyframes umlenkt: -1 rund, 1 scharf</translation>
    </message>
    <message>
        <source>Tension</source>
        <translation>Spannung</translation>
    </message>
    <message>
        <source>Tension of the first selected key</source>
        <translation>Spannung des ersten ausgewählten Keyframes</translation>
    </message>
    <message>
        <source>C&amp;ontinuity:</source>
        <translation>K&amp;ontinuität:</translation>
    </message>
    <message>
        <source>How smoothly the curve passes the selected keys: 0 smooth, otherwise a corner</source>
        <translation>Wie glatt die Kurve durch die ausgewählten Keyframes läuft: 0 glatt, sonst eine Ecke</translation>
    </message>
    <message>
        <source>Continuity</source>
        <translation>Kontinuität</translation>
    </message>
    <message>
        <source>Continuity of the first selected key</source>
        <translation>Kontinuität des ersten ausgewählten Keyframes</translation>
    </message>
    <message>
        <source>&amp;Bias:</source>
        <translation>&amp;Neigung:</translation>
    </message>
    <message>
        <source>Whether the curve leans to the key before (1) or the key after (-1)</source>
        <translation>Ob die Kurve zum Keyframe davor (1) oder danach (-1) neigt</translation>
    </message>
    <message>
        <source>Bias</source>
        <translation>Neigung</translation>
    </message>
    <message>
        <source>Bias of the first selected key</source>
        <translation>Neigung des ersten ausgewählten Keyframes</translation>
    </message>
    <message>
        <source>Set tension, continuity and bias of the selected keys to 0</source>
        <translation>Spannung, Kontinuität und Neigung der ausgewählten Keyframes auf 0 setzen</translation>
    </message>
    <message>
        <source>Reset S&amp;hape</source>
        <translation>&amp;Form zurücksetzen</translation>
    </message>
    <message>
        <source>&amp;Value:</source>
        <translation>&amp;Wert:</translation>
    </message>
    <message>
        <source>The value at every time</source>
        <translation>Der Wert zu jeder Zeit</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>E&amp;xpression:</source>
        <translation>Ausdr&amp;uck:</translation>
    </message>
    <message>
        <source>The value as an expression of the time t, in seconds</source>
        <translation>Der Wert als Ausdruck der Zeit t, in Sekunden</translation>
    </message>
    <message>
        <source>sin(2*t)+0.5</source>
        <translation>sin(2*t)+0.5</translation>
    </message>
    <message>
        <source>Ele&amp;ments:</source>
        <translation>Ele&amp;mente:</translation>
    </message>
    <message>
        <source>Options</source>
        <translation>Optionen</translation>
    </message>
</context>
</TS>

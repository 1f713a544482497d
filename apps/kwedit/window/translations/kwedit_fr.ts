<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr">
<context>
    <name>KWChannelEditorController</name>
    <message>
        <source>Channels</source>
        <translation>Canaux</translation>
    </message>
    <message>
        <source>View</source>
        <translation>Vue</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Valeur</translation>
    </message>
    <message>
        <source>This kind of channel has no options.</source>
        <translation>Ce type de canal n’a pas d’options.</translation>
    </message>
    <message>
        <source>Choose a channel in the list.</source>
        <translation>Choisissez un canal dans la liste.</translation>
    </message>
</context>
<context>
    <name>KWChannelUndoRecorder</name>
    <message>
        <source>Edit Keys</source>
        <translation>Modifier les clés</translation>
    </message>
    <message>
        <source>Change Curve Shape</source>
        <translation>Modifier la forme de la courbe</translation>
    </message>
    <message>
        <source>Change Channel Type</source>
        <translation>Changer le type du canal</translation>
    </message>
    <message>
        <source>Paste Channel</source>
        <translation>Coller le canal</translation>
    </message>
    <message>
        <source>Change Expression</source>
        <translation>Modifier l’expression</translation>
    </message>
    <message>
        <source>Change Value</source>
        <translation>Modifier la valeur</translation>
    </message>
    <message>
        <source>Change Interpolation</source>
        <translation>Modifier l’interpolation</translation>
    </message>
    <message>
        <source>Change Repeat</source>
        <translation>Modifier la répétition</translation>
    </message>
</context>
<context>
    <name>KWDocumentInspector</name>
    <message>
        <source>File</source>
        <translation>Fichier</translation>
    </message>
    <message>
        <source>Form</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>Keyed archive, XML</source>
        <translation>Archive à clés, XML</translation>
    </message>
    <message>
        <source>Sequential archive</source>
        <translation>Archive séquentielle</translation>
    </message>
    <message>
        <source>Keyed archive, binary</source>
        <translation>Archive à clés, binaire</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Largeur</translation>
    </message>
    <message>
        <source>The width of the stage in pixels</source>
        <translation>La largeur de la scène en pixels</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>Hauteur</translation>
    </message>
    <message>
        <source>The height of the stage in pixels</source>
        <translation>La hauteur de la scène en pixels</translation>
    </message>
    <message>
        <source>Stage</source>
        <translation>Scène</translation>
    </message>
    <message>
        <source>Scale</source>
        <translation>Échelle</translation>
    </message>
    <message>
        <source>Pixels of the stage for a meter</source>
        <translation>Pixels de la scène pour un mètre</translation>
    </message>
    <message>
        <source>px/m</source>
        <translation>px/m</translation>
    </message>
    <message>
        <source>Distance</source>
        <translation>Distance</translation>
    </message>
    <message>
        <source>How far the camera is from the sprites, for panning and tilting</source>
        <translation>Distance de la caméra aux sprites, pour les panoramiques et les inclinaisons</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>Caméra</translation>
    </message>
    <message>
        <source>What is behind the sprites</source>
        <translation>Ce qui se trouve derrière les sprites</translation>
    </message>
    <message>
        <source>Transparent</source>
        <translation>Transparent</translation>
    </message>
    <message>
        <source>Plain color</source>
        <translation>Couleur unie</translation>
    </message>
    <message>
        <source>Room</source>
        <translation>Pièce</translation>
    </message>
    <message>
        <source>Backdrop</source>
        <translation>Arrière-plan</translation>
    </message>
    <message>
        <source>Backdrop color</source>
        <translation>Couleur de l’arrière-plan</translation>
    </message>
    <message>
        <source>The color, or that of the wall at its top</source>
        <translation>La couleur, ou celle du haut du mur</translation>
    </message>
    <message>
        <source>Wall color</source>
        <translation>Couleur du mur</translation>
    </message>
    <message>
        <source>The color of the wall at its foot</source>
        <translation>La couleur du bas du mur</translation>
    </message>
    <message>
        <source>Floor color</source>
        <translation>Couleur du sol</translation>
    </message>
    <message>
        <source>The color of the floor</source>
        <translation>La couleur du sol</translation>
    </message>
    <message>
        <source>Colors</source>
        <translation>Couleurs</translation>
    </message>
    <message>
        <source>Change Stage Size</source>
        <translation>Modifier la taille de la scène</translation>
    </message>
    <message>
        <source>Change Scale</source>
        <translation>Modifier l’échelle</translation>
    </message>
    <message>
        <source>Change Camera Distance</source>
        <translation>Modifier la distance de la caméra</translation>
    </message>
    <message>
        <source>Change Backdrop</source>
        <translation>Modifier l’arrière-plan</translation>
    </message>
    <message>
        <source>Change Backdrop Color</source>
        <translation>Modifier la couleur de l’arrière-plan</translation>
    </message>
    <message>
        <source>Not saved yet</source>
        <translation>Pas encore enregistré</translation>
    </message>
    <message>
        <source>%1, read-only</source>
        <translation>%1, en lecture seule</translation>
    </message>
</context>
<context>
    <name>KWEditAppearance</name>
    <message>
        <source>As the &amp;System</source>
        <translation>Comme le &amp;système</translation>
    </message>
    <message>
        <source>&amp;Light</source>
        <translation>&amp;Clair</translation>
    </message>
    <message>
        <source>&amp;Dark</source>
        <translation>S&amp;ombre</translation>
    </message>
</context>
<context>
    <name>KWEditApplication</name>
    <message>
        <source>a document without a name</source>
        <translation>un document sans nom</translation>
    </message>
    <message>
        <source>Recover the changes to %1?</source>
        <translation>Récupérer les modifications de %1&#xa0;?</translation>
    </message>
    <message>
        <source>%1: the picture cannot be written</source>
        <translation>%1&#xa0;: l’image ne peut pas être écrite</translation>
    </message>
    <message>
        <source>kwedit ended before they were saved. The copy is of %1.</source>
        <translation>kwedit s’est arrêté avant leur enregistrement. La copie date du %1.</translation>
    </message>
</context>
<context>
    <name>KWEditAutosave</name>
    <message>
        <source>%1: the folder cannot be made</source>
        <translation>%1&#xa0;: le dossier ne peut pas être créé</translation>
    </message>
</context>
<context>
    <name>KWEditCommands</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Fichier</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>É&amp;dition</translation>
    </message>
    <message>
        <source>E&amp;lement</source>
        <translation>Élé&amp;ment</translation>
    </message>
    <message>
        <source>&amp;Keys</source>
        <translation>&amp;Clés</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Affichage</translation>
    </message>
    <message>
        <source>&amp;Playback</source>
        <translation>&amp;Lecture</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>A&amp;ide</translation>
    </message>
    <message>
        <source>&amp;New</source>
        <translation>&amp;Nouveau</translation>
    </message>
    <message>
        <source>Opens a window on an empty stage</source>
        <translation>Ouvre une fenêtre sur une scène vide</translation>
    </message>
    <message>
        <source>&amp;Open...</source>
        <translation>&amp;Ouvrir...</translation>
    </message>
    <message>
        <source>Opens a document</source>
        <translation>Ouvre un document</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>Documents &amp;récents</translation>
    </message>
    <message>
        <source>Documents that were open lately</source>
        <translation>Les documents ouverts récemment</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Fermer</translation>
    </message>
    <message>
        <source>Closes this window</source>
        <translation>Ferme cette fenêtre</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Enregistrer</translation>
    </message>
    <message>
        <source>Writes the document to its file</source>
        <translation>Écrit le document dans son fichier</translation>
    </message>
    <message>
        <source>Save &amp;As...</source>
        <translation>Enregistrer &amp;sous...</translation>
    </message>
    <message>
        <source>Gives the document another file or form</source>
        <translation>Donne au document un autre fichier ou un autre format</translation>
    </message>
    <message>
        <source>Save a Co&amp;py...</source>
        <translation>Enregistrer une &amp;copie...</translation>
    </message>
    <message>
        <source>Writes a copy elsewhere; this document stays as it is</source>
        <translation>Écrit une copie ailleurs&#xa0;; ce document reste tel quel</translation>
    </message>
    <message>
        <source>Re&amp;vert to Saved</source>
        <translation>Re&amp;venir à la version enregistrée</translation>
    </message>
    <message>
        <source>Reads the document from its file again</source>
        <translation>Relit le document depuis son fichier</translation>
    </message>
    <message>
        <source>Export &amp;Frames...</source>
        <translation>Exporter des &amp;images...</translation>
    </message>
    <message>
        <source>Renders frames as PNG files</source>
        <translation>Calcule des images en fichiers PNG</translation>
    </message>
    <message>
        <source>Export &amp;Movie...</source>
        <translation>Exporter un fil&amp;m...</translation>
    </message>
    <message>
        <source>Renders a movie</source>
        <translation>Calcule un film</translation>
    </message>
    <message>
        <source>Export Va&amp;lues...</source>
        <translation>Exporter les va&amp;leurs...</translation>
    </message>
    <message>
        <source>Writes the values of all channels, frame by frame, as CSV or JSON</source>
        <translation>Écrit les valeurs de tous les canaux, image par image, en CSV ou JSON</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Quitter</translation>
    </message>
    <message>
        <source>Closes all windows</source>
        <translation>Ferme toutes les fenêtres</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Annuler</translation>
    </message>
    <message>
        <source>Takes the latest step back</source>
        <translation>Annule la dernière étape</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Rétablir</translation>
    </message>
    <message>
        <source>Does again what was undone</source>
        <translation>Refait ce qui a été annulé</translation>
    </message>
    <message>
        <source>Cance&amp;l Drag</source>
        <translation>Abandonner le &amp;glissement</translation>
    </message>
    <message>
        <source>Puts back what is being dragged; Escape does it too</source>
        <translation>Remet en place ce qui est déplacé&#xa0;; Échap le fait aussi</translation>
    </message>
    <message>
        <source>&amp;Copy Channel</source>
        <translation>&amp;Copier le canal</translation>
    </message>
    <message>
        <source>Keeps a copy of the channel that is edited</source>
        <translation>Garde une copie du canal en cours d’édition</translation>
    </message>
    <message>
        <source>&amp;Paste Channel</source>
        <translation>Co&amp;ller le canal</translation>
    </message>
    <message>
        <source>Puts the copied channel in place of the one that is edited</source>
        <translation>Remplace le canal en cours d’édition par le canal copié</translation>
    </message>
    <message>
        <source>&amp;New Sprite</source>
        <translation>&amp;Nouveau sprite</translation>
    </message>
    <message>
        <source>Adds a sprite with the usual channels</source>
        <translation>Ajoute un sprite avec les canaux habituels</translation>
    </message>
    <message>
        <source>New &amp;Shape</source>
        <translation>Nouvelle &amp;forme</translation>
    </message>
    <message>
        <source>Adds a sprite of a given shape</source>
        <translation>Ajoute un sprite d’une forme donnée</translation>
    </message>
    <message>
        <source>New from &amp;Files...</source>
        <translation>Nouveau depuis des f&amp;ichiers...</translation>
    </message>
    <message>
        <source>Adds a sprite for each picture or movie</source>
        <translation>Ajoute un sprite pour chaque image ou film</translation>
    </message>
    <message>
        <source>New &amp;Channel...</source>
        <translation>Nouveau &amp;canal...</translation>
    </message>
    <message>
        <source>Adds a channel to the selected element</source>
        <translation>Ajoute un canal à l’élément sélectionné</translation>
    </message>
    <message>
        <source>&amp;Rename...</source>
        <translation>&amp;Renommer...</translation>
    </message>
    <message>
        <source>Gives the selected element or channel another name</source>
        <translation>Donne un autre nom à l’élément ou au canal sélectionné</translation>
    </message>
    <message>
        <source>Bring For&amp;ward</source>
        <translation>&amp;Avancer d’un plan</translation>
    </message>
    <message>
        <source>Moves the element in front of the next one</source>
        <translation>Place l’élément devant le suivant</translation>
    </message>
    <message>
        <source>Send &amp;Backward</source>
        <translation>Rec&amp;uler d’un plan</translation>
    </message>
    <message>
        <source>Moves the element behind the one before</source>
        <translation>Place l’élément derrière le précédent</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Supprimer</translation>
    </message>
    <message>
        <source>Removes the selected element or channel</source>
        <translation>Supprime l’élément ou le canal sélectionné</translation>
    </message>
    <message>
        <source>Cu&amp;t</source>
        <translation>Co&amp;uper</translation>
    </message>
    <message>
        <source>Takes the selected keys to the clipboard</source>
        <translation>Coupe les clés sélectionnées vers le presse-papiers</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Copier</translation>
    </message>
    <message>
        <source>Copies the selected keys</source>
        <translation>Copie les clés sélectionnées</translation>
    </message>
    <message>
        <source>&amp;Paste</source>
        <translation>C&amp;oller</translation>
    </message>
    <message>
        <source>Puts copied keys at the current time</source>
        <translation>Colle les clés copiées au temps actuel</translation>
    </message>
    <message>
        <source>&amp;Duplicate</source>
        <translation>&amp;Dupliquer</translation>
    </message>
    <message>
        <source>Repeats the selected keys behind themselves</source>
        <translation>Répète les clés sélectionnées à leur suite</translation>
    </message>
    <message>
        <source>De&amp;lete</source>
        <translation>Supp&amp;rimer</translation>
    </message>
    <message>
        <source>Removes the selected keys</source>
        <translation>Supprime les clés sélectionnées</translation>
    </message>
    <message>
        <source>Select &amp;All</source>
        <translation>&amp;Tout sélectionner</translation>
    </message>
    <message>
        <source>Selects every key of the channel</source>
        <translation>Sélectionne toutes les clés du canal</translation>
    </message>
    <message>
        <source>Select &amp;None</source>
        <translation>Tout désé&amp;lectionner</translation>
    </message>
    <message>
        <source>Selects no key</source>
        <translation>Ne sélectionne aucune clé</translation>
    </message>
    <message>
        <source>&amp;Invert Selection</source>
        <translation>&amp;Inverser la sélection</translation>
    </message>
    <message>
        <source>Selects the other keys</source>
        <translation>Sélectionne les autres clés</translation>
    </message>
    <message>
        <source>Select Ne&amp;xt</source>
        <translation>Sélectionner la sui&amp;vante</translation>
    </message>
    <message>
        <source>Selects the next key</source>
        <translation>Sélectionne la clé suivante</translation>
    </message>
    <message>
        <source>Select Pre&amp;vious</source>
        <translation>Sélectionner la &amp;précédente</translation>
    </message>
    <message>
        <source>Selects the key before</source>
        <translation>Sélectionne la clé précédente</translation>
    </message>
    <message>
        <source>Later by a Frame</source>
        <translation>Une image plus tard</translation>
    </message>
    <message>
        <source>Moves the selected keys by a frame; ten with Shift</source>
        <translation>Décale les clés sélectionnées d’une image&#xa0;; de dix avec Maj</translation>
    </message>
    <message>
        <source>Earlier by a Frame</source>
        <translation>Une image plus tôt</translation>
    </message>
    <message>
        <source>Moves the selected keys back by a frame; ten with Shift</source>
        <translation>Recule les clés sélectionnées d’une image&#xa0;; de dix avec Maj</translation>
    </message>
    <message>
        <source>Higher by a Step</source>
        <translation>Un pas plus haut</translation>
    </message>
    <message>
        <source>Raises the selected keys by a hundredth of what is shown; a tenth with Shift</source>
        <translation>Monte les clés sélectionnées d’un centième de ce qui est affiché&#xa0;; d’un dixième avec Maj</translation>
    </message>
    <message>
        <source>Lower by a Step</source>
        <translation>Un pas plus bas</translation>
    </message>
    <message>
        <source>Lowers the selected keys by a hundredth of what is shown; a tenth with Shift</source>
        <translation>Baisse les clés sélectionnées d’un centième de ce qui est affiché&#xa0;; d’un dixième avec Maj</translation>
    </message>
    <message>
        <source>Later by Ten Frames</source>
        <translation>Dix images plus tard</translation>
    </message>
    <message>
        <source>Moves the selected keys by ten frames</source>
        <translation>Décale les clés sélectionnées de dix images</translation>
    </message>
    <message>
        <source>Earlier by Ten Frames</source>
        <translation>Dix images plus tôt</translation>
    </message>
    <message>
        <source>Moves the selected keys back by ten frames</source>
        <translation>Recule les clés sélectionnées de dix images</translation>
    </message>
    <message>
        <source>Higher by Ten Steps</source>
        <translation>Dix pas plus haut</translation>
    </message>
    <message>
        <source>Raises the selected keys by a tenth of what is shown</source>
        <translation>Monte les clés sélectionnées d’un dixième de ce qui est affiché</translation>
    </message>
    <message>
        <source>Lower by Ten Steps</source>
        <translation>Dix pas plus bas</translation>
    </message>
    <message>
        <source>Lowers the selected keys by a tenth of what is shown</source>
        <translation>Baisse les clés sélectionnées d’un dixième de ce qui est affiché</translation>
    </message>
    <message>
        <source>&amp;Set Key Here</source>
        <translation>Po&amp;ser une clé ici</translation>
    </message>
    <message>
        <source>Sets a key on the curve at the current time</source>
        <translation>Pose une clé sur la courbe au temps actuel</translation>
    </message>
    <message>
        <source>Exact Time and Val&amp;ue</source>
        <translation>Saisir te&amp;mps et valeur</translation>
    </message>
    <message>
        <source>Goes to the fields for time and value of the selected keys</source>
        <translation>Va aux champs du temps et de la valeur des clés sélectionnées</translation>
    </message>
    <message>
        <source>Snap to &amp;Grid</source>
        <translation>Aimanter à la &amp;grille</translation>
    </message>
    <message>
        <source>Dragged keys jump to half the steps of the grid</source>
        <translation>Les clés déplacées sautent aux demi-pas de la grille</translation>
    </message>
    <message>
        <source>Ele&amp;ments</source>
        <translation>É&amp;léments</translation>
    </message>
    <message>
        <source>Shows or hides the list of elements</source>
        <translation>Affiche ou masque la liste des éléments</translation>
    </message>
    <message>
        <source>&amp;Stage</source>
        <translation>&amp;Scène</translation>
    </message>
    <message>
        <source>Shows or hides the stage</source>
        <translation>Affiche ou masque la scène</translation>
    </message>
    <message>
        <source>T&amp;ransport</source>
        <translation>&amp;Transport</translation>
    </message>
    <message>
        <source>Shows or hides the transport bar</source>
        <translation>Affiche ou masque la barre de transport</translation>
    </message>
    <message>
        <source>&amp;Curves</source>
        <translation>&amp;Courbes</translation>
    </message>
    <message>
        <source>Shows or hides the curve editor</source>
        <translation>Affiche ou masque l’éditeur de courbes</translation>
    </message>
    <message>
        <source>&amp;Inspectors</source>
        <translation>&amp;Inspecteurs</translation>
    </message>
    <message>
        <source>Shows or hides the inspectors</source>
        <translation>Affiche ou masque les inspecteurs</translation>
    </message>
    <message>
        <source>&amp;History</source>
        <translation>&amp;Historique</translation>
    </message>
    <message>
        <source>Shows or hides the list of steps</source>
        <translation>Affiche ou masque la liste des étapes</translation>
    </message>
    <message>
        <source>Curves in a &amp;Window of Their Own</source>
        <translation>Courbes dans une &amp;fenêtre séparée</translation>
    </message>
    <message>
        <source>Takes the curve editor out of the window, or puts it back</source>
        <translation>Détache l’éditeur de courbes de la fenêtre, ou l’y remet</translation>
    </message>
    <message>
        <source>Frame &amp;All Keys</source>
        <translation>C&amp;adrer toutes les clés</translation>
    </message>
    <message>
        <source>Shows all keys of the curves</source>
        <translation>Affiche toutes les clés des courbes</translation>
    </message>
    <message>
        <source>Frame Se&amp;lected Keys</source>
        <translation>Ca&amp;drer les clés sélectionnées</translation>
    </message>
    <message>
        <source>Shows the selected keys</source>
        <translation>Affiche les clés sélectionnées</translation>
    </message>
    <message>
        <source>Show All Cur&amp;ves of the Element</source>
        <translation>Afficher toutes les cour&amp;bes de l’élément</translation>
    </message>
    <message>
        <source>Draws the curves of the element&apos;s other channels too</source>
        <translation>Dessine aussi les courbes des autres canaux de l’élément</translation>
    </message>
    <message>
        <source>Hide &amp;Other Curves</source>
        <translation>&amp;Masquer les autres courbes</translation>
    </message>
    <message>
        <source>Draws only the curve that is edited</source>
        <translation>Ne dessine que la courbe en cours d’édition</translation>
    </message>
    <message>
        <source>&amp;Zoom In</source>
        <translation>&amp;Zoom avant</translation>
    </message>
    <message>
        <source>Shows the stage larger</source>
        <translation>Agrandit l’affichage de la scène</translation>
    </message>
    <message>
        <source>Zoom Ou&amp;t</source>
        <translation>Zoom a&amp;rrière</translation>
    </message>
    <message>
        <source>Shows the stage smaller</source>
        <translation>Réduit l’affichage de la scène</translation>
    </message>
    <message>
        <source>Zoom to &amp;Fit</source>
        <translation>Aj&amp;uster la scène</translation>
    </message>
    <message>
        <source>Shows the whole stage</source>
        <translation>Affiche toute la scène</translation>
    </message>
    <message>
        <source>Actual Size (&amp;1:1)</source>
        <translation>Taille réelle (&amp;1:1)</translation>
    </message>
    <message>
        <source>One pixel of the stage on one of the screen</source>
        <translation>Un pixel de la scène pour un pixel de l’écran</translation>
    </message>
    <message>
        <source>Stage Drawin&amp;g</source>
        <translation>Dessi&amp;n de la scène</translation>
    </message>
    <message>
        <source>What the stage is drawn with</source>
        <translation>Avec quoi la scène est dessinée</translation>
    </message>
    <message>
        <source>Languag&amp;e</source>
        <translation>Lan&amp;gue</translation>
    </message>
    <message>
        <source>The language of the menus</source>
        <translation>La langue des menus</translation>
    </message>
    <message>
        <source>F&amp;ull Screen</source>
        <translation>Pl&amp;ein écran</translation>
    </message>
    <message>
        <source>The window alone on the screen</source>
        <translation>La fenêtre seule à l’écran</translation>
    </message>
    <message>
        <source>&amp;Play</source>
        <translation>&amp;Lecture</translation>
    </message>
    <message>
        <source>Plays or pauses</source>
        <translation>Lance ou met en pause</translation>
    </message>
    <message>
        <source>&amp;Next Frame</source>
        <translation>Image &amp;suivante</translation>
    </message>
    <message>
        <source>One frame on</source>
        <translation>Avance d’une image</translation>
    </message>
    <message>
        <source>Pre&amp;vious Frame</source>
        <translation>Image &amp;précédente</translation>
    </message>
    <message>
        <source>One frame back</source>
        <translation>Recule d’une image</translation>
    </message>
    <message>
        <source>Next &amp;Key</source>
        <translation>&amp;Clé suivante</translation>
    </message>
    <message>
        <source>On to the next key of the channel</source>
        <translation>Va à la clé suivante du canal</translation>
    </message>
    <message>
        <source>Previous Ke&amp;y</source>
        <translation>Clé préc&amp;édente</translation>
    </message>
    <message>
        <source>Back to the key before</source>
        <translation>Revient à la clé précédente</translation>
    </message>
    <message>
        <source>To the &amp;Beginning</source>
        <translation>Au &amp;début</translation>
    </message>
    <message>
        <source>To the first frame of the range</source>
        <translation>À la première image de la plage</translation>
    </message>
    <message>
        <source>To the &amp;End</source>
        <translation>À la &amp;fin</translation>
    </message>
    <message>
        <source>To the last frame of the range</source>
        <translation>À la dernière image de la plage</translation>
    </message>
    <message>
        <source>&amp;Loop</source>
        <translation>&amp;Boucle</translation>
    </message>
    <message>
        <source>Begins again at the end</source>
        <translation>Recommence à la fin</translation>
    </message>
    <message>
        <source>&amp;Tour</source>
        <translation>&amp;Visite guidée</translation>
    </message>
    <message>
        <source>Walks through one edit</source>
        <translation>Montre une modification pas à pas</translation>
    </message>
    <message>
        <source>&amp;Commands and Shortcuts</source>
        <translation>&amp;Commandes et raccourcis</translation>
    </message>
    <message>
        <source>Lists every command</source>
        <translation>Liste toutes les commandes</translation>
    </message>
    <message>
        <source>&amp;About kwedit</source>
        <translation>À &amp;propos de kwedit</translation>
    </message>
    <message>
        <source>Which version this is</source>
        <translation>De quelle version il s’agit</translation>
    </message>
    <message>
        <source>A&amp;ppearance</source>
        <translation>A&amp;pparence</translation>
    </message>
    <message>
        <source>Whether the window is light or dark</source>
        <translation>Si la fenêtre est claire ou sombre</translation>
    </message>
</context>
<context>
    <name>KWEditCurvesPane</name>
    <message>
        <source>Curves</source>
        <translation>Courbes</translation>
    </message>
    <message>
        <source>Set Key</source>
        <translation>Poser une clé</translation>
    </message>
    <message>
        <source>Choose a channel in the list to see its curve.</source>
        <translation>Choisissez un canal dans la liste pour voir sa courbe.</translation>
    </message>
    <message>
        <source>Nothing moves yet. Add a sprite in the Element menu, or drop pictures and movies onto the stage; the curves of its channels are here.</source>
        <translation>Rien ne bouge encore. Ajoutez un sprite par le menu Élément, ou déposez des images et des films sur la scène&#xa0;; les courbes de ses canaux apparaîtront ici.</translation>
    </message>
</context>
<context>
    <name>KWEditDocument</name>
    <message>
        <source>Stage</source>
        <translation>Scène</translation>
    </message>
    <message>
        <source>%1: it cannot be written in this form: %2</source>
        <translation>%1&#xa0;: le document ne peut pas être écrit dans ce format&#xa0;: %2</translation>
    </message>
    <message>
        <source>the document has no file yet</source>
        <translation>le document n’a pas encore de fichier</translation>
    </message>
    <message>
        <source>%1: the document is read-only</source>
        <translation>%1&#xa0;: le document est en lecture seule</translation>
    </message>
    <message>
        <source>%1: another program has changed the file</source>
        <translation>%1&#xa0;: un autre programme a modifié le fichier</translation>
    </message>
    <message>
        <source>Add Element</source>
        <translation>Ajouter un élément</translation>
    </message>
    <message>
        <source>Add Sprite</source>
        <translation>Ajouter un sprite</translation>
    </message>
    <message>
        <source>Remove Element</source>
        <translation>Supprimer l’élément</translation>
    </message>
    <message>
        <source>Move Element</source>
        <translation>Déplacer l’élément</translation>
    </message>
    <message>
        <source>Rename Element</source>
        <translation>Renommer l’élément</translation>
    </message>
    <message>
        <source>Change Content</source>
        <translation>Modifier le contenu</translation>
    </message>
    <message>
        <source>Change Stage</source>
        <translation>Modifier la scène</translation>
    </message>
    <message>
        <source>Add Channel</source>
        <translation>Ajouter un canal</translation>
    </message>
    <message>
        <source>Remove Channel</source>
        <translation>Supprimer le canal</translation>
    </message>
    <message>
        <source>Rename Channel</source>
        <translation>Renommer le canal</translation>
    </message>
</context>
<context>
    <name>KWEditExporter</name>
    <message>
        <source>another export is under way</source>
        <translation>un autre export est en cours</translation>
    </message>
</context>
<context>
    <name>KWEditLanguage</name>
    <message>
        <source>As the System</source>
        <translation>Comme le système</translation>
    </message>
</context>
<context>
    <name>KWEditOutlinePane</name>
    <message>
        <source>Elements</source>
        <translation>Éléments</translation>
    </message>
</context>
<context>
    <name>KWEditQuestions</name>
    <message>
        <source>Keyed archive, binary (*.kwdoc)</source>
        <translation>Archive à clés, binaire (*.kwdoc)</translation>
    </message>
    <message>
        <source>Keyed archive, XML (*.kwdoc *.xml)</source>
        <translation>Archive à clés, XML (*.kwdoc *.xml)</translation>
    </message>
    <message>
        <source>Sequential archive (*.kwdoc *.typedstream)</source>
        <translation>Archive séquentielle (*.kwdoc *.typedstream)</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Ouvrir</translation>
    </message>
    <message>
        <source>Documents (*.kwdoc *.xml *.plist *.typedstream);;All files (*)</source>
        <translation>Documents (*.kwdoc *.xml *.plist *.typedstream);;Tous les fichiers (*)</translation>
    </message>
    <message>
        <source>New from Files</source>
        <translation>Nouveau depuis des fichiers</translation>
    </message>
    <message>
        <source>Save the changes to %1?</source>
        <translation>Enregistrer les modifications de %1&#xa0;?</translation>
    </message>
    <message>
        <source>Otherwise they are lost.</source>
        <translation>Sinon, elles seront perdues.</translation>
    </message>
    <message>
        <source>Recover</source>
        <translation>Récupérer</translation>
    </message>
    <message>
        <source>Later</source>
        <translation>Plus tard</translation>
    </message>
</context>
<context>
    <name>KWEditSpriteMove</name>
    <message>
        <source>Move</source>
        <translation>Déplacer</translation>
    </message>
    <message>
        <source>“%1” has no channels x and y to move it with.</source>
        <translation>«&#xa0;%1&#xa0;» n’a pas de canaux x et y pour le déplacer.</translation>
    </message>
    <message>
        <source>“%1” has no channel %2 to move it with.</source>
        <translation>«&#xa0;%1&#xa0;» n’a pas de canal %2 pour le déplacer.</translation>
    </message>
    <message>
        <source>%1 of “%2” cannot be set by hand.</source>
        <translation>%1 de «&#xa0;%2&#xa0;» ne peut pas être réglé à la main.</translation>
    </message>
    <message>
        <source> and </source>
        <translation> et </translation>
    </message>
</context>
<context>
    <name>KWEditStageTiming</name>
    <message>
        <source>Change Frame Rate</source>
        <translation>Modifier la cadence</translation>
    </message>
    <message>
        <source>Change Range</source>
        <translation>Modifier la plage</translation>
    </message>
</context>
<context>
    <name>KWEditStageView</name>
    <message>
        <source>Stage</source>
        <translation>Scène</translation>
    </message>
    <message>
        <source>The frame of the document at the current time</source>
        <translation>L’image du document au temps actuel</translation>
    </message>
</context>
<context>
    <name>KWEditWindow</name>
    <message>
        <source>No copy could be kept for the case of a crash: %1</source>
        <translation>Aucune copie de secours n’a pu être gardée en cas de plantage&#xa0;: %1</translation>
    </message>
    <message>
        <source>Untitled</source>
        <translation>Sans titre</translation>
    </message>
    <message>
        <source>read-only</source>
        <translation>lecture seule</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Annuler</translation>
    </message>
    <message>
        <source>&amp;Undo %1</source>
        <translation>&amp;Annuler&#xa0;: %1</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Rétablir</translation>
    </message>
    <message>
        <source>&amp;Redo %1</source>
        <translation>&amp;Rétablir&#xa0;: %1</translation>
    </message>
    <message>
        <source>Clear List</source>
        <translation>Vider la liste</translation>
    </message>
    <message>
        <source>Sprite</source>
        <translation>Sprite</translation>
    </message>
    <message>
        <source>Add Sprites</source>
        <translation>Ajouter des sprites</translation>
    </message>
    <message>
        <source>Remove Elements</source>
        <translation>Supprimer les éléments</translation>
    </message>
    <message>
        <source>Rename Channel</source>
        <translation>Renommer le canal</translation>
    </message>
    <message>
        <source>Name:</source>
        <translation>Nom&#xa0;:</translation>
    </message>
    <message>
        <source>Rename Element</source>
        <translation>Renommer l’élément</translation>
    </message>
    <message>
        <source>&amp;Automatic</source>
        <translation>&amp;Automatique</translation>
    </message>
    <message>
        <source>By the &amp;Processor</source>
        <translation>Par le &amp;processeur</translation>
    </message>
    <message>
        <source>With &amp;OpenGL</source>
        <translation>Avec &amp;OpenGL</translation>
    </message>
    <message>
        <source>OpenGL does not work here.</source>
        <translation>OpenGL ne fonctionne pas ici.</translation>
    </message>
    <message>
        <source>The language changes when kwedit is started again.</source>
        <translation>La langue changera au prochain démarrage de kwedit.</translation>
    </message>
    <message>
        <source>About kwedit</source>
        <translation>À propos de kwedit</translation>
    </message>
    <message>
        <source>&lt;b&gt;kwedit %1&lt;/b&gt;&lt;br&gt;Edits documents of animated sprites, with the views of KWBase.</source>
        <translation>&lt;b&gt;kwedit %1&lt;/b&gt;&lt;br&gt;Édite des documents de sprites animés, avec les vues de KWBase.</translation>
    </message>
    <message>
        <source>%1 cannot be opened.</source>
        <translation>%1 ne peut pas être ouvert.</translation>
    </message>
    <message>
        <source>The file is read-only: save the document under another name to keep changes.</source>
        <translation>Le fichier est en lecture seule&#xa0;: enregistrez le document sous un autre nom pour garder les modifications.</translation>
    </message>
    <message>
        <source>Recovered. Save the document to keep it.</source>
        <translation>Récupéré. Enregistrez le document pour le conserver.</translation>
    </message>
    <message>
        <source>The copy of a document cannot be opened.</source>
        <translation>La copie d’un document ne peut pas être ouverte.</translation>
    </message>
    <message>
        <source>Another program has changed %1.</source>
        <translation>Un autre programme a modifié %1.</translation>
    </message>
    <message>
        <source>Saving replaces what it has written.</source>
        <translation>L’enregistrement remplace ce qu’il a écrit.</translation>
    </message>
    <message>
        <source>Save Anyway</source>
        <translation>Enregistrer quand même</translation>
    </message>
    <message>
        <source>%1 cannot be saved.</source>
        <translation>%1 ne peut pas être enregistré.</translation>
    </message>
    <message>
        <source>Saved.</source>
        <translation>Enregistré.</translation>
    </message>
    <message>
        <source>In this form the document loses something.</source>
        <translation>Dans ce format, le document perd quelque chose.</translation>
    </message>
    <message>
        <source>Saved a copy as %1.</source>
        <translation>Copie enregistrée sous %1.</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>Enregistrer sous</translation>
    </message>
    <message>
        <source>Save a Copy</source>
        <translation>Enregistrer une copie</translation>
    </message>
    <message>
        <source>Go back to the saved document?</source>
        <translation>Revenir au document enregistré&#xa0;?</translation>
    </message>
    <message>
        <source>Every change since then is lost.</source>
        <translation>Toutes les modifications depuis lors seront perdues.</translation>
    </message>
    <message>
        <source>Revert</source>
        <translation>Revenir</translation>
    </message>
    <message>
        <source>this document</source>
        <translation>ce document</translation>
    </message>
    <message>
        <source>Add Sprite</source>
        <translation>Ajouter un sprite</translation>
    </message>
    <message>
        <source>“%1” holds the settings of the stage.</source>
        <translation>« %1 » contient les réglages de la scène.</translation>
    </message>
    <message>
        <source>Without it the stage has its usual size, backdrop and range.</source>
        <translation>Sans lui, la scène reprend sa taille, son fond et sa plage habituels.</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Supprimer</translation>
    </message>
    <message>
        <source>There is nothing in this archive that kwedit knows.</source>
        <translation>Cette archive ne contient rien que kwedit connaisse.</translation>
    </message>
</context>
<context>
    <name>KWElementChannelsView</name>
    <message>
        <source>1 key</source>
        <translation>1 clé</translation>
    </message>
    <message>
        <source>%1 keys</source>
        <translation>%1 clés</translation>
    </message>
    <message>
        <source>Constant</source>
        <translation>Constante</translation>
    </message>
    <message>
        <source>Expression</source>
        <translation>Expression</translation>
    </message>
    <message>
        <source>Add Channel</source>
        <translation>Ajouter un canal</translation>
    </message>
    <message>
        <source>Remove Channel</source>
        <translation>Supprimer le canal</translation>
    </message>
    <message>
        <source>Rename Channel</source>
        <translation>Renommer le canal</translation>
    </message>
    <message>
        <source>Channels</source>
        <translation>Canaux</translation>
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
        <translation>Rotation</translation>
    </message>
    <message>
        <source>Scale</source>
        <translation>Échelle</translation>
    </message>
    <message>
        <source>Scale x</source>
        <translation>Échelle x</translation>
    </message>
    <message>
        <source>Scale y</source>
        <translation>Échelle y</translation>
    </message>
    <message>
        <source>Squash</source>
        <translation>Écrasement</translation>
    </message>
    <message>
        <source>Shear</source>
        <translation>Cisaillement</translation>
    </message>
    <message>
        <source>Opacity</source>
        <translation>Opacité</translation>
    </message>
    <message>
        <source>Red</source>
        <translation>Rouge</translation>
    </message>
    <message>
        <source>Green</source>
        <translation>Vert</translation>
    </message>
    <message>
        <source>Blue</source>
        <translation>Bleu</translation>
    </message>
    <message>
        <source>Radius</source>
        <translation>Rayon</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Largeur</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>Hauteur</translation>
    </message>
    <message>
        <source>Movie time</source>
        <translation>Temps du film</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Pan</source>
        <translation>Panoramique</translation>
    </message>
    <message>
        <source>Tilt</source>
        <translation>Inclinaison</translation>
    </message>
    <message>
        <source>Other…</source>
        <translation>Autre…</translation>
    </message>
</context>
<context>
    <name>KWElementInspector</name>
    <message>
        <source>Mixed</source>
        <translation>Mixte</translation>
    </message>
    <message>
        <source>Nothing selected</source>
        <translation>Aucune sélection</translation>
    </message>
    <message>
        <source>Channels</source>
        <translation>Canaux</translation>
    </message>
    <message>
        <source>Choose a Picture or Movie</source>
        <translation>Choisir une image ou un film</translation>
    </message>
    <message>
        <source>Pictures and movies</source>
        <translation>Images et films</translation>
    </message>
    <message>
        <source>All files</source>
        <translation>Tous les fichiers</translation>
    </message>
    <message>
        <source>Rectangle</source>
        <translation>Rectangle</translation>
    </message>
    <message>
        <source>Rounded rectangle</source>
        <translation>Rectangle arrondi</translation>
    </message>
    <message>
        <source>Ellipse</source>
        <translation>Ellipse</translation>
    </message>
    <message>
        <source>Triangle</source>
        <translation>Triangle</translation>
    </message>
    <message>
        <source>Diamond</source>
        <translation>Losange</translation>
    </message>
    <message>
        <source>Star</source>
        <translation>Étoile</translation>
    </message>
    <message>
        <source>Glow</source>
        <translation>Halo</translation>
    </message>
    <message>
        <source>Ball</source>
        <translation>Balle</translation>
    </message>
    <message>
        <source>The name of the element</source>
        <translation>Le nom de l’élément</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nom</translation>
    </message>
    <message>
        <source>What the element shows</source>
        <translation>Ce que montre l’élément</translation>
    </message>
    <message>
        <source>Nothing</source>
        <translation>Rien</translation>
    </message>
    <message>
        <source>Picture or movie…</source>
        <translation>Image ou film…</translation>
    </message>
    <message>
        <source>Content</source>
        <translation>Contenu</translation>
    </message>
    <message>
        <source>Choose a File</source>
        <translation>Choisir un fichier</translation>
    </message>
    <message>
        <source>Choose another picture or movie</source>
        <translation>Choisir une autre image ou un autre film</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Fichier</translation>
    </message>
    <message>
        <source>In proportion to the other one, or of natural size, where it is 0</source>
        <translation>En proportion de l’autre, ou de taille naturelle, si 0</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Largeur</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>Hauteur</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Taille</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Couleur</translation>
    </message>
    <message>
        <source>The color of the shape</source>
        <translation>La couleur de la forme</translation>
    </message>
    <message>
        <source>Second color</source>
        <translation>Seconde couleur</translation>
    </message>
    <message>
        <source>The second color of the shape, where it has one</source>
        <translation>La seconde couleur de la forme, si elle en a une</translation>
    </message>
    <message>
        <source>Colors</source>
        <translation>Couleurs</translation>
    </message>
    <message>
        <source>Pivot x</source>
        <translation>Pivot x</translation>
    </message>
    <message>
        <source>What it turns about: 0 at the left, 1 at the right</source>
        <translation>Autour de quoi il tourne&#xa0;: 0 à gauche, 1 à droite</translation>
    </message>
    <message>
        <source>Pivot y</source>
        <translation>Pivot y</translation>
    </message>
    <message>
        <source>What it turns about: 0 at the top, 1 at the bottom</source>
        <translation>Autour de quoi il tourne&#xa0;: 0 en haut, 1 en bas</translation>
    </message>
    <message>
        <source>Pivot</source>
        <translation>Pivot</translation>
    </message>
    <message>
        <source>How dark a shadow it throws on the ground</source>
        <translation>L’intensité de l’ombre qu’il projette au sol</translation>
    </message>
    <message>
        <source>Shadow</source>
        <translation>Ombre</translation>
    </message>
    <message>
        <source>How it covers what is behind it</source>
        <translation>Comment il couvre ce qui est derrière</translation>
    </message>
    <message>
        <source>Normal</source>
        <translation>Normal</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Addition</translation>
    </message>
    <message>
        <source>Multiply</source>
        <translation>Produit</translation>
    </message>
    <message>
        <source>Screen</source>
        <translation>Superposition</translation>
    </message>
    <message>
        <source>Blending</source>
        <translation>Fusion</translation>
    </message>
    <message>
        <source>Loop movie</source>
        <translation>Film en boucle</translation>
    </message>
    <message>
        <source>The movie begins again at its end</source>
        <translation>Le film recommence à sa fin</translation>
    </message>
    <message>
        <source>Change Size</source>
        <translation>Modifier la taille</translation>
    </message>
    <message>
        <source>Change Color</source>
        <translation>Modifier la couleur</translation>
    </message>
    <message>
        <source>Change Pivot</source>
        <translation>Modifier le pivot</translation>
    </message>
    <message>
        <source>Change Shadow</source>
        <translation>Modifier l’ombre</translation>
    </message>
    <message>
        <source>Change Blending</source>
        <translation>Modifier la fusion</translation>
    </message>
    <message>
        <source>Change Looping</source>
        <translation>Modifier la lecture en boucle</translation>
    </message>
    <message>
        <source>%1 elements</source>
        <translation>%1 éléments</translation>
    </message>
    <message>
        <source>Natural</source>
        <translation>Auto</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1&#xa0;%</translation>
    </message>
    <message>
        <source>Change Content</source>
        <translation>Modifier le contenu</translation>
    </message>
</context>
<context>
    <name>KWEmbeddedChannelController</name>
    <message>
        <source>%1: channelOVContainer is not the outermost widget</source>
        <translation>%1&#xa0;: channelOVContainer n’est pas le widget le plus extérieur</translation>
    </message>
    <message>
        <source>Channel</source>
        <translation>Canal</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Valeur</translation>
    </message>
    <message>
        <source>Channels</source>
        <translation>Canaux</translation>
    </message>
</context>
<context>
    <name>KWExportDialog</name>
    <message>
        <source>1 second left</source>
        <translation>encore 1 seconde</translation>
    </message>
    <message numerus="yes">
        <source>%n seconds left</source>
        <translation>
            <numerusform>encore %n seconde</numerusform>
            <numerusform>encore %n secondes</numerusform>
        </translation>
    </message>
    <message>
        <source>%1:%2 minutes left</source>
        <translation>encore %1:%2 minutes</translation>
    </message>
    <message>
        <source>Export Frames</source>
        <translation>Exporter des images</translation>
    </message>
    <message>
        <source>Export Movie</source>
        <translation>Exporter un film</translation>
    </message>
    <message>
        <source>Export Values</source>
        <translation>Exporter les valeurs</translation>
    </message>
    <message>
        <source>Destination</source>
        <translation>Destination</translation>
    </message>
    <message>
        <source>Bro&amp;wse...</source>
        <translation>&amp;Parcourir...</translation>
    </message>
    <message>
        <source>First frame</source>
        <translation>Première image</translation>
    </message>
    <message>
        <source>Last frame</source>
        <translation>Dernière image</translation>
    </message>
    <message>
        <source>&amp;Folder:</source>
        <translation>&amp;Dossier&#xa0;:</translation>
    </message>
    <message>
        <source>&amp;File:</source>
        <translation>&amp;Fichier&#xa0;:</translation>
    </message>
    <message>
        <source>F&amp;rames:</source>
        <translation>&amp;Images&#xa0;:</translation>
    </message>
    <message>
        <source>Width in pixels</source>
        <translation>Largeur en pixels</translation>
    </message>
    <message>
        <source>Height in pixels</source>
        <translation>Hauteur en pixels</translation>
    </message>
    <message>
        <source>&amp;Size:</source>
        <translation>&amp;Taille&#xa0;:</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Progression</translation>
    </message>
    <message>
        <source>&amp;Export</source>
        <translation>&amp;Exporter</translation>
    </message>
    <message>
        <source>Movies are written by ffmpeg, which is not installed here.</source>
        <translation>Les films sont écrits par ffmpeg, qui n’est pas installé ici.</translation>
    </message>
    <message>
        <source>untitled</source>
        <translation>sans-titre</translation>
    </message>
    <message>
        <source>Folder for the Frames</source>
        <translation>Dossier des images</translation>
    </message>
    <message>
        <source>Movie File</source>
        <translation>Fichier du film</translation>
    </message>
    <message>
        <source>Movies (*.mp4 *.mov *.mkv *.webm *.gif)</source>
        <translation>Films (*.mp4 *.mov *.mkv *.webm *.gif)</translation>
    </message>
    <message>
        <source>File for the Values</source>
        <translation>Fichier des valeurs</translation>
    </message>
    <message>
        <source>Values (*.csv *.json *.jsonl)</source>
        <translation>Valeurs (*.csv *.json *.jsonl)</translation>
    </message>
    <message>
        <source>Say where to export to.</source>
        <translation>Indiquez où exporter.</translation>
    </message>
    <message>
        <source>Beginning</source>
        <translation>Démarrage</translation>
    </message>
    <message>
        <source>%1 of %2 frames</source>
        <translation>%1 images sur %2</translation>
    </message>
    <message>
        <source>Exported to %1</source>
        <translation>Exporté vers %1</translation>
    </message>
    <message>
        <source>Canceled</source>
        <translation>Annulé</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>Fer&amp;mer</translation>
    </message>
</context>
<context>
    <name>KWFrameExport</name>
    <message>
        <source>a frame could not be packed as PNG</source>
        <translation>une image n’a pas pu être codée en PNG</translation>
    </message>
    <message>
        <source>the program ffmpeg, which makes movies, is not here</source>
        <translation>le programme ffmpeg, qui produit les films, est absent</translation>
    </message>
    <message>
        <source>ffmpeg failed</source>
        <translation>ffmpeg a échoué</translation>
    </message>
    <message>
        <source>the folder cannot be made</source>
        <translation>le dossier ne peut pas être créé</translation>
    </message>
    <message>
        <source>there is no memory for a frame of that size</source>
        <translation>la mémoire ne suffit pas pour une image de cette taille</translation>
    </message>
</context>
<context>
    <name>KWHistoryPanel</name>
    <message>
        <source>History</source>
        <translation>Historique</translation>
    </message>
    <message>
        <source>New document</source>
        <translation>Nouveau document</translation>
    </message>
    <message>
        <source>As opened</source>
        <translation>À l’ouverture</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Modification</translation>
    </message>
</context>
<context>
    <name>KWImageEditorView</name>
    <message>
        <source>The image “%1” cannot be shown: %2.</source>
        <translation>L’image «&#xa0;%1&#xa0;» ne peut pas être affichée&#xa0;: %2.</translation>
    </message>
    <message>
        <source>it is not a file</source>
        <translation>ce n’est pas un fichier</translation>
    </message>
    <message>
        <source>The image of %1 x %2 pixels is too large for OpenGL here.</source>
        <translation>L’image de %1 x %2 pixels est trop grande pour OpenGL ici.</translation>
    </message>
    <message>
        <source>The movie of %1 x %2 pixels is too large for OpenGL here.</source>
        <translation>Le film de %1 x %2 pixels est trop grand pour OpenGL ici.</translation>
    </message>
</context>
<context>
    <name>KWInspectorPanel</name>
    <message>
        <source>Inspectors</source>
        <translation>Inspecteurs</translation>
    </message>
    <message>
        <source>Element</source>
        <translation>Élément</translation>
    </message>
    <message>
        <source>Document</source>
        <translation>Document</translation>
    </message>
    <message>
        <source>Transport</source>
        <translation>Transport</translation>
    </message>
    <message>
        <source>Units</source>
        <translation>Unités</translation>
    </message>
</context>
<context>
    <name>KWKeyCommands</name>
    <message>
        <source>The keys cannot be moved that far.</source>
        <translation>Les clés ne peuvent pas être déplacées aussi loin.</translation>
    </message>
    <message>
        <source>The values would become too large.</source>
        <translation>Les valeurs deviendraient trop grandes.</translation>
    </message>
    <message>
        <source>Move Keys</source>
        <translation>Déplacer les clés</translation>
    </message>
    <message>
        <source>A key needs a time that is a number.</source>
        <translation>Une clé a besoin d’un nombre comme temps.</translation>
    </message>
    <message>
        <source>Move Key</source>
        <translation>Déplacer la clé</translation>
    </message>
    <message>
        <source>A key needs a value that is a number.</source>
        <translation>Une clé a besoin d’un nombre comme valeur.</translation>
    </message>
    <message>
        <source>Change Value</source>
        <translation>Modifier la valeur</translation>
    </message>
    <message>
        <source>A shape needs a number.</source>
        <translation>Une forme a besoin d’un nombre.</translation>
    </message>
    <message>
        <source>Change Curve Shape</source>
        <translation>Modifier la forme de la courbe</translation>
    </message>
    <message>
        <source>Reset Curve Shape</source>
        <translation>Réinitialiser la forme de la courbe</translation>
    </message>
    <message>
        <source>Delete Keys</source>
        <translation>Supprimer les clés</translation>
    </message>
    <message>
        <source>The keys would come to be too far away.</source>
        <translation>Les clés se retrouveraient trop loin.</translation>
    </message>
    <message>
        <source>Duplicate Keys</source>
        <translation>Dupliquer les clés</translation>
    </message>
    <message>
        <source>Cut Keys</source>
        <translation>Couper les clés</translation>
    </message>
    <message>
        <source>Paste Keys</source>
        <translation>Coller les clés</translation>
    </message>
    <message>
        <source>The keys on the clipboard are damaged.</source>
        <translation>Les clés du presse-papiers sont endommagées.</translation>
    </message>
    <message>
        <source>The keys on the clipboard are from another version of the program.</source>
        <translation>Les clés du presse-papiers viennent d’une autre version du programme.</translation>
    </message>
    <message>
        <source>Line %1 on the clipboard is not a time and a value.</source>
        <translation>La ligne %1 du presse-papiers n’est pas un temps et une valeur.</translation>
    </message>
    <message>
        <source>Line %1 on the clipboard has a number that is too large.</source>
        <translation>La ligne %1 du presse-papiers contient un nombre trop grand.</translation>
    </message>
    <message>
        <source>There are no keys on the clipboard.</source>
        <translation>Il n’y a pas de clés dans le presse-papiers.</translation>
    </message>
</context>
<context>
    <name>KWKeyEntryField</name>
    <message>
        <source>mixed</source>
        <translation>mixte</translation>
    </message>
</context>
<context>
    <name>KWKeyEntryPanel</name>
    <message>
        <source>Selected keys</source>
        <translation>Clés sélectionnées</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>Image</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Temps</translation>
    </message>
    <message>
        <source>In seconds, or frames as in “12f”; “+=0.5” moves each key</source>
        <translation>En secondes, ou en images comme «&#xa0;12f&#xa0;»&#xa0;; «&#xa0;+=0.5&#xa0;» décale chaque clé</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Valeur</translation>
    </message>
    <message>
        <source>“+=0.5” moves each key</source>
        <translation>«&#xa0;+=0.5&#xa0;» décale chaque clé</translation>
    </message>
    <message>
        <source>Tension</source>
        <translation>Tension</translation>
    </message>
    <message>
        <source>Bias</source>
        <translation>Biais</translation>
    </message>
    <message>
        <source>Continuity</source>
        <translation>Continuité</translation>
    </message>
    <message>
        <source>1 is tight, 0 is smooth, -1 is round</source>
        <translation>1 est tendu, 0 est lisse, -1 est rond</translation>
    </message>
    <message>
        <source>Other than 0, there is a corner at the key</source>
        <translation>S’il n’est pas 0, il y a un angle à la clé</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Réinitialiser</translation>
    </message>
    <message>
        <source>Makes tension, bias and continuity 0</source>
        <translation>Met tension, biais et continuité à 0</translation>
    </message>
    <message>
        <source>Reset shape</source>
        <translation>Réinitialiser la forme</translation>
    </message>
    <message>
        <source>No keys</source>
        <translation>Aucune clé</translation>
    </message>
    <message>
        <source>1 key</source>
        <translation>1 clé</translation>
    </message>
    <message numerus="yes">
        <source>%n keys</source>
        <translation>
            <numerusform>%n clé</numerusform>
            <numerusform>%n clés</numerusform>
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
        <translation>1 penche vers la clé précédente, -1 vers la suivante</translation>
    </message>
</context>
<context>
    <name>KWMovie</name>
    <message>
        <source>The movie “%1” cannot be shown: %2.</source>
        <translation>Le film «&#xa0;%1&#xa0;» ne peut pas être affiché&#xa0;: %2.</translation>
    </message>
    <message>
        <source>no frame can be decoded</source>
        <translation>aucune image ne peut être décodée</translation>
    </message>
    <message>
        <source>its frames cannot be converted</source>
        <translation>ses images ne peuvent pas être converties</translation>
    </message>
    <message>
        <source>it is cut off after %1 s</source>
        <translation>il est coupé après %1 s</translation>
    </message>
    <message>
        <source>it is damaged after %1 s: %2</source>
        <translation>il est endommagé après %1 s&#xa0;: %2</translation>
    </message>
    <message>
        <source>it is not a file</source>
        <translation>ce n’est pas un fichier</translation>
    </message>
    <message>
        <source>the file is empty</source>
        <translation>le fichier est vide</translation>
    </message>
    <message>
        <source>no movie is recognised in it</source>
        <translation>aucun film n’y est reconnu</translation>
    </message>
    <message>
        <source>it has no video</source>
        <translation>il ne contient pas de vidéo</translation>
    </message>
    <message>
        <source>its video is of an unknown kind</source>
        <translation>sa vidéo est d’un type inconnu</translation>
    </message>
    <message>
        <source>there is no decoder for its video, which is %1</source>
        <translation>il n’y a pas de décodeur pour sa vidéo (%1)</translation>
    </message>
    <message>
        <source>its video, which is %1, cannot be decoded: %2</source>
        <translation>sa vidéo (%1) ne peut pas être décodée&#xa0;: %2</translation>
    </message>
    <message>
        <source>its video has no times</source>
        <translation>sa vidéo n’a pas d’indications de temps</translation>
    </message>
    <message>
        <source>its video, which is %1, has no frame that can be decoded</source>
        <translation>sa vidéo (%1) n’a aucune image décodable</translation>
    </message>
</context>
<context>
    <name>KWNewChannelDialog</name>
    <message>
        <source>New Channel</source>
        <translation>Nouveau canal</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Aucune</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Longueur</translation>
    </message>
    <message>
        <source>Angle</source>
        <translation>Angle</translation>
    </message>
    <message>
        <source>&amp;Name</source>
        <translation>&amp;Nom</translation>
    </message>
    <message>
        <source>&amp;Group</source>
        <translation>&amp;Groupe</translation>
    </message>
    <message>
        <source>&amp;Unit</source>
        <translation>&amp;Unité</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Ajouter</translation>
    </message>
</context>
<context>
    <name>KWShortcutsDialog</name>
    <message>
        <source>Commands and Shortcuts</source>
        <translation>Commandes et raccourcis</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Rechercher</translation>
    </message>
    <message>
        <source>Commands</source>
        <translation>Commandes</translation>
    </message>
    <message>
        <source>Command</source>
        <translation>Commande</translation>
    </message>
    <message>
        <source>Shortcut</source>
        <translation>Raccourci</translation>
    </message>
    <message>
        <source>What it does</source>
        <translation>Ce qu’elle fait</translation>
    </message>
</context>
<context>
    <name>KWSprite</name>
    <message>
        <source>%1, channel %2: it cannot be evaluated: %3</source>
        <translation>%1, canal %2&#xa0;: il ne peut pas être évalué&#xa0;: %3</translation>
    </message>
    <message>
        <source>%1: there is no such file</source>
        <translation>%1&#xa0;: ce fichier n’existe pas</translation>
    </message>
</context>
<context>
    <name>KWTour</name>
    <message>
        <source>&amp;End Tour</source>
        <translation>&amp;Quitter</translation>
    </message>
    <message>
        <source>&amp;Back</source>
        <translation>Précé&amp;dent</translation>
    </message>
    <message>
        <source>The stage</source>
        <translation>La scène</translation>
    </message>
    <message>
        <source>This is what the document shows at the current time. Click a sprite to select it, drag it to move it, turn the wheel to zoom.</source>
        <translation>Voici ce que montre le document au temps actuel. Cliquez sur un sprite pour le sélectionner, faites-le glisser pour le déplacer, tournez la molette pour zoomer.</translation>
    </message>
    <message>
        <source>Let it run</source>
        <translation>Lancez la lecture</translation>
    </message>
    <message>
        <source>Press Space, or the play button. Drag in the ruler to go to any time.</source>
        <translation>Appuyez sur Espace ou sur le bouton de lecture. Faites glisser dans la règle pour aller à un temps quelconque.</translation>
    </message>
    <message>
        <source>Choose a channel</source>
        <translation>Choisissez un canal</translation>
    </message>
    <message>
        <source>A channel is a number that changes with the time, such as the height of a ball. Select one here; its value can be typed anew beside it.</source>
        <translation>Un canal est un nombre qui change avec le temps, comme la hauteur d’une balle. Sélectionnez-en un ici&#xa0;; sa valeur peut être saisie à côté.</translation>
    </message>
    <message>
        <source>Change the curve</source>
        <translation>Modifiez la courbe</translation>
    </message>
    <message>
        <source>Drag a key up or down. The stage follows. With Escape you take a drag back; the wheel zooms here too.</source>
        <translation>Faites glisser une clé vers le haut ou le bas. La scène suit. Échap annule un glissement&#xa0;; la molette zoome ici aussi.</translation>
    </message>
    <message>
        <source>Take it back</source>
        <translation>Annulez</translation>
    </message>
    <message>
        <source>Press Ctrl+Z: each gesture is one step. View &gt; History lists them all.</source>
        <translation>Appuyez sur Ctrl+Z&#xa0;: chaque geste est une étape. Affichage &gt; Historique les liste toutes.</translation>
    </message>
    <message>
        <source>That is one edit</source>
        <translation>Voilà une modification</translation>
    </message>
    <message>
        <source>Help &gt; Commands and Shortcuts lists everything else. File &gt; Export writes frames, a movie or values.</source>
        <translation>Aide &gt; Commandes et raccourcis liste tout le reste. Fichier &gt; Exporter écrit des images, un film ou des valeurs.</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 sur %2</translation>
    </message>
    <message>
        <source>&amp;Done</source>
        <translation>&amp;Terminer</translation>
    </message>
    <message>
        <source>&amp;Skip</source>
        <translation>&amp;Passer</translation>
    </message>
    <message>
        <source>&amp;Next</source>
        <translation>&amp;Suivant</translation>
    </message>
</context>
<context>
    <name>KWTransportBar</name>
    <message>
        <source>Time</source>
        <translation>Temps</translation>
    </message>
    <message>
        <source>The current time. Type seconds, minutes:seconds, or frames with an f</source>
        <translation>Le temps actuel. Saisissez des secondes, minutes:secondes, ou des images suivies d’un f</translation>
    </message>
    <message>
        <source>Frame rate</source>
        <translation>Cadence</translation>
    </message>
    <message>
        <source>Frames a second</source>
        <translation>Images par seconde</translation>
    </message>
    <message>
        <source>fps</source>
        <translation>i/s</translation>
    </message>
    <message>
        <source>Measured rate</source>
        <translation>Cadence mesurée</translation>
    </message>
    <message>
        <source>Frames shown a second, and frames left out since playing began</source>
        <translation>Images affichées par seconde, et images sautées depuis le début de la lecture</translation>
    </message>
    <message>
        <source>%1 fps, %2 dropped</source>
        <translation>%1 i/s, %2 sautées</translation>
    </message>
    <message>
        <source>To Beginning</source>
        <translation>Au début</translation>
    </message>
    <message>
        <source>Go to the first frame</source>
        <translation>Aller à la première image</translation>
    </message>
    <message>
        <source>Step Back</source>
        <translation>Image précédente</translation>
    </message>
    <message>
        <source>Go one frame back</source>
        <translation>Reculer d’une image</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Lecture</translation>
    </message>
    <message>
        <source>Step Forward</source>
        <translation>Image suivante</translation>
    </message>
    <message>
        <source>Go one frame forward</source>
        <translation>Avancer d’une image</translation>
    </message>
    <message>
        <source>To End</source>
        <translation>À la fin</translation>
    </message>
    <message>
        <source>Go to the last frame</source>
        <translation>Aller à la dernière image</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Boucle</translation>
    </message>
    <message>
        <source>Begin again at the end of the range</source>
        <translation>Recommencer à la fin de la plage</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>%1 fps</source>
        <translation>%1 i/s</translation>
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
        <translation>Images</translation>
    </message>
    <message>
        <source>Seconds</source>
        <translation>Secondes</translation>
    </message>
    <message>
        <source>Times are frames; click for seconds</source>
        <translation>Les temps sont en images&#xa0;; cliquer pour les secondes</translation>
    </message>
    <message>
        <source>Times are seconds; click for frames</source>
        <translation>Les temps sont en secondes&#xa0;; cliquer pour les images</translation>
    </message>
</context>
<context>
    <name>KWTransportInspector</name>
    <message>
        <source>Frame rate</source>
        <translation>Cadence</translation>
    </message>
    <message>
        <source>Frames a second</source>
        <translation>Images par seconde</translation>
    </message>
    <message>
        <source>From</source>
        <translation>De</translation>
    </message>
    <message>
        <source>Where the range to play and to export begins</source>
        <translation>Où commence la plage à lire et à exporter</translation>
    </message>
    <message>
        <source>To</source>
        <translation>À</translation>
    </message>
    <message>
        <source>Where the range to play and to export ends</source>
        <translation>Où finit la plage à lire et à exporter</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Boucle</translation>
    </message>
    <message>
        <source>Begin again at the end of the range</source>
        <translation>Recommencer à la fin de la plage</translation>
    </message>
    <message>
        <source>fps</source>
        <translation>i/s</translation>
    </message>
    <message>
        <source>Rate</source>
        <translation>Cadence</translation>
    </message>
    <message>
        <source>to</source>
        <translation>à</translation>
    </message>
    <message>
        <source>Range</source>
        <translation>Plage</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Durée</translation>
    </message>
    <message>
        <source>Playback</source>
        <translation>Lecture</translation>
    </message>
    <message>
        <source>Dropped</source>
        <translation>Sautées</translation>
    </message>
    <message>
        <source>%1 s, %2 frames</source>
        <translation>%1 s, %2 images</translation>
    </message>
    <message>
        <source>Stopped</source>
        <translation>Arrêtée</translation>
    </message>
    <message>
        <source>%1 of %2 fps</source>
        <translation>%1 sur %2 i/s</translation>
    </message>
    <message>
        <source>%1 frames</source>
        <translation>%1 images</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Aucune</translation>
    </message>
</context>
<context>
    <name>KWTransportRuler</name>
    <message>
        <source>Time</source>
        <translation>Temps</translation>
    </message>
    <message>
        <source>Drag to scrub; with Alt between frames</source>
        <translation>Glisser pour parcourir le temps&#xa0;; avec Alt, aussi entre les images</translation>
    </message>
</context>
<context>
    <name>KWUnitsInspector</name>
    <message>
        <source>The unit that lengths are shown in</source>
        <translation>L’unité dans laquelle les longueurs sont affichées</translation>
    </message>
    <message>
        <source>The unit that angles are shown in</source>
        <translation>L’unité dans laquelle les angles sont affichés</translation>
    </message>
    <message>
        <source>Lengths</source>
        <translation>Longueurs</translation>
    </message>
    <message>
        <source>Angles</source>
        <translation>Angles</translation>
    </message>
</context>
<context>
    <name>KWValueText</name>
    <message>
        <source>“%1” is too large.</source>
        <translation>«&#xa0;%1&#xa0;» est trop grand.</translation>
    </message>
    <message>
        <source>“%1” is not a number.</source>
        <translation>«&#xa0;%1&#xa0;» n’est pas un nombre.</translation>
    </message>
    <message>
        <source>“%1” is not a number: the decimal sign is a point.</source>
        <translation>«&#xa0;%1&#xa0;» n’est pas un nombre&#xa0;: le séparateur décimal est un point.</translation>
    </message>
    <message>
        <source>“%1” is not a number alone, and this value has no unit.</source>
        <translation>«&#xa0;%1&#xa0;» n’est pas un nombre seul, et cette valeur n’a pas d’unité.</translation>
    </message>
    <message>
        <source>“%1” is not a number with a known unit.</source>
        <translation>«&#xa0;%1&#xa0;» n’est pas un nombre avec une unité connue.</translation>
    </message>
</context>
<context>
    <name>channelEditorPanel</name>
    <message>
        <source>Channels</source>
        <translation>Canaux</translation>
    </message>
    <message>
        <source>What the mouse does in the curve</source>
        <translation>Ce que fait la souris dans la courbe</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>Outils</translation>
    </message>
    <message>
        <source>Select keys and move them. Shift adds to the selection.</source>
        <translation>Sélectionner des clés et les déplacer. Maj ajoute à la sélection.</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>Sélection</translation>
    </message>
    <message>
        <source>&amp;Select</source>
        <translation>&amp;Sélection</translation>
    </message>
    <message>
        <source>Click to add a key, and drag to move it.</source>
        <translation>Cliquer pour ajouter une clé, glisser pour la déplacer.</translation>
    </message>
    <message>
        <source>Add Key</source>
        <translation>Ajouter une clé</translation>
    </message>
    <message>
        <source>&amp;Add Key</source>
        <translation>&amp;Ajouter</translation>
    </message>
    <message>
        <source>Drag to move what is shown. With Shift, drag to zoom.</source>
        <translation>Glisser pour déplacer la vue. Avec Maj, glisser pour zoomer.</translation>
    </message>
    <message>
        <source>Pan</source>
        <translation>Déplacer la vue</translation>
    </message>
    <message>
        <source>&amp;Pan</source>
        <translation>Dé&amp;placer</translation>
    </message>
    <message>
        <source>Moved keys jump to half the steps of the grid</source>
        <translation>Les clés déplacées sautent aux demi-pas de la grille</translation>
    </message>
    <message>
        <source>S&amp;nap</source>
        <translation>Aima&amp;nter</translation>
    </message>
    <message>
        <source>What is animated follows while keys are dragged</source>
        <translation>Ce qui est animé suit pendant le déplacement des clés</translation>
    </message>
    <message>
        <source>&amp;Live</source>
        <translation>&amp;Direct</translation>
    </message>
    <message>
        <source>&amp;Grid:</source>
        <translation>&amp;Grille&#xa0;:</translation>
    </message>
    <message>
        <source>How fine the grid is</source>
        <translation>La finesse de la grille</translation>
    </message>
    <message>
        <source>Grid resolution</source>
        <translation>Résolution de la grille</translation>
    </message>
    <message>
        <source>T&amp;ype:</source>
        <translation>T&amp;ype&#xa0;:</translation>
    </message>
    <message>
        <source>What the channel is made of. Another type starts afresh; undo brings the old one back.</source>
        <translation>Ce dont le canal est fait. Un autre type repart de zéro&#xa0;; Annuler ramène l’ancien.</translation>
    </message>
    <message>
        <source>Channel type</source>
        <translation>Type de canal</translation>
    </message>
    <message>
        <source>Keyframes</source>
        <translation>Images clés</translation>
    </message>
    <message>
        <source>Expression</source>
        <translation>Expression</translation>
    </message>
    <message>
        <source>Constant</source>
        <translation>Constante</translation>
    </message>
    <message>
        <source>Copy the channel</source>
        <translation>Copier le canal</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Copier</translation>
    </message>
    <message>
        <source>Put the copied channel in this one&apos;s place</source>
        <translation>Mettre le canal copié à la place de celui-ci</translation>
    </message>
    <message>
        <source>Past&amp;e</source>
        <translation>C&amp;oller</translation>
    </message>
    <message>
        <source>Show all keys of the channel</source>
        <translation>Afficher toutes les clés du canal</translation>
    </message>
    <message>
        <source>&amp;Fit</source>
        <translation>A&amp;juster</translation>
    </message>
    <message>
        <source>The channel to be edited is the selected one. A click on a square, or Space, shows the channel&apos;s curve behind it as well.</source>
        <translation>Le canal modifié est celui qui est sélectionné. Un clic sur un carré, ou Espace, affiche aussi la courbe du canal derrière.</translation>
    </message>
    <message>
        <source>Elements and channels</source>
        <translation>Éléments et canaux</translation>
    </message>
    <message>
        <source>Curve</source>
        <translation>Courbe</translation>
    </message>
    <message>
        <source>Choose a channel in the list.</source>
        <translation>Choisissez un canal dans la liste.</translation>
    </message>
    <message>
        <source>&amp;Interpolation:</source>
        <translation>&amp;Interpolation&#xa0;:</translation>
    </message>
    <message>
        <source>How values run from key to key</source>
        <translation>Comment les valeurs vont d’une clé à l’autre</translation>
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
        <translation>Linéaire</translation>
    </message>
    <message>
        <source>Step</source>
        <translation>Palier</translation>
    </message>
    <message>
        <source>&amp;Repeat:</source>
        <translation>&amp;Répétition&#xa0;:</translation>
    </message>
    <message>
        <source>What happens before the first key and after the last</source>
        <translation>Ce qui se passe avant la première clé et après la dernière</translation>
    </message>
    <message>
        <source>Repeat</source>
        <translation>Répétition</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Aucune</translation>
    </message>
    <message>
        <source>Cycle</source>
        <translation>Cycle</translation>
    </message>
    <message>
        <source>Ping-Pong</source>
        <translation>Ping-pong</translation>
    </message>
    <message>
        <source>&amp;Tension:</source>
        <translation>&amp;Tension&#xa0;:</translation>
    </message>
    <message>
        <source>How tightly the curve turns at the selected keys: -1 round, 1 sharp</source>
        <translation>À quel point la courbe tourne serré aux clés sélectionnées&#xa0;: -1 rond, 1 anguleux</translation>
    </message>
    <message>
        <source>Tension</source>
        <translation>Tension</translation>
    </message>
    <message>
        <source>Tension of the first selected key</source>
        <translation>Tension de la première clé sélectionnée</translation>
    </message>
    <message>
        <source>C&amp;ontinuity:</source>
        <translation>Contin&amp;uité&#xa0;:</translation>
    </message>
    <message>
        <source>How smoothly the curve passes the selected keys: 0 smooth, otherwise a corner</source>
        <translation>La douceur de la courbe aux clés sélectionnées&#xa0;: 0 lisse, sinon un angle</translation>
    </message>
    <message>
        <source>Continuity</source>
        <translation>Continuité</translation>
    </message>
    <message>
        <source>Continuity of the first selected key</source>
        <translation>Continuité de la première clé sélectionnée</translation>
    </message>
    <message>
        <source>&amp;Bias:</source>
        <translation>&amp;Biais&#xa0;:</translation>
    </message>
    <message>
        <source>Whether the curve leans to the key before (1) or the key after (-1)</source>
        <translation>Si la courbe penche vers la clé précédente (1) ou la suivante (-1)</translation>
    </message>
    <message>
        <source>Bias</source>
        <translation>Biais</translation>
    </message>
    <message>
        <source>Bias of the first selected key</source>
        <translation>Biais de la première clé sélectionnée</translation>
    </message>
    <message>
        <source>Set tension, continuity and bias of the selected keys to 0</source>
        <translation>Mettre à 0 la tension, la continuité et le biais des clés sélectionnées</translation>
    </message>
    <message>
        <source>Reset S&amp;hape</source>
        <translation>Réinitialiser la &amp;forme</translation>
    </message>
    <message>
        <source>&amp;Value:</source>
        <translation>&amp;Valeur&#xa0;:</translation>
    </message>
    <message>
        <source>The value at every time</source>
        <translation>La valeur à tout moment</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Valeur</translation>
    </message>
    <message>
        <source>E&amp;xpression:</source>
        <translation>E&amp;xpression&#xa0;:</translation>
    </message>
    <message>
        <source>The value as an expression of the time t, in seconds</source>
        <translation>La valeur comme expression du temps t, en secondes</translation>
    </message>
    <message>
        <source>sin(2*t)+0.5</source>
        <translation>sin(2*t)+0.5</translation>
    </message>
    <message>
        <source>Ele&amp;ments:</source>
        <translation>É&amp;léments&#xa0;:</translation>
    </message>
    <message>
        <source>Options</source>
        <translation>Options</translation>
    </message>
</context>
</TS>

<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR" sourcelanguage="en">
<context>
    <name>Catalogue</name>
    <message>
        <source>Read files</source>
        <translation>Lire des fichiers</translation>
    </message>
    <message>
        <source>Write files</source>
        <translation>Écrire des fichiers</translation>
    </message>
    <message>
        <source>Change tables</source>
        <translation>Transformer des tables</translation>
    </message>
</context>
<context>
    <name>Commands</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Fichier</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Édition</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Affichage</translation>
    </message>
    <message>
        <source>&amp;Graph</source>
        <translation>&amp;Graphe</translation>
    </message>
    <message>
        <source>&amp;Run</source>
        <translation>E&amp;xécuter</translation>
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
        <source>Start an empty graph in a new tab</source>
        <translation>Commencer un graphe vide dans un nouvel onglet</translation>
    </message>
    <message>
        <source>&amp;Open...</source>
        <translation>&amp;Ouvrir...</translation>
    </message>
    <message>
        <source>Open graph files</source>
        <translation>Ouvrir des fichiers de graphes</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>Fichiers &amp;récents</translation>
    </message>
    <message>
        <source>Open a graph of the last sessions</source>
        <translation>Ouvrir un graphe des dernières sessions</translation>
    </message>
    <message>
        <source>S&amp;tart Page</source>
        <translation>Page d&apos;&amp;accueil</translation>
    </message>
    <message>
        <source>Show recent files and examples</source>
        <translation>Afficher les fichiers récents et les exemples</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Enregistrer</translation>
    </message>
    <message>
        <source>Save the graph</source>
        <translation>Enregistrer le graphe</translation>
    </message>
    <message>
        <source>Save &amp;As...</source>
        <translation>Enregistrer &amp;sous...</translation>
    </message>
    <message>
        <source>Save the graph in another file</source>
        <translation>Enregistrer le graphe dans un autre fichier</translation>
    </message>
    <message>
        <source>Save A&amp;ll</source>
        <translation>&amp;Tout enregistrer</translation>
    </message>
    <message>
        <source>Save all changed graphs</source>
        <translation>Enregistrer tous les graphes modifiés</translation>
    </message>
    <message>
        <source>Reloa&amp;d</source>
        <translation>Re&amp;lire</translation>
    </message>
    <message>
        <source>Read the graph from its file again, without the unsaved changes</source>
        <translation>Relire le graphe dans son fichier, sans les modifications non enregistrées</translation>
    </message>
    <message>
        <source>&amp;Export</source>
        <translation>E&amp;xporter</translation>
    </message>
    <message>
        <source>Save a picture or a script of the graph</source>
        <translation>Enregistrer une image ou un script du graphe</translation>
    </message>
    <message>
        <source>As &amp;SVG...</source>
        <translation>En &amp;SVG...</translation>
    </message>
    <message>
        <source>Save the graph as a drawing</source>
        <translation>Enregistrer le graphe comme dessin</translation>
    </message>
    <message>
        <source>As &amp;PNG...</source>
        <translation>En &amp;PNG...</translation>
    </message>
    <message>
        <source>Save the graph as an image</source>
        <translation>Enregistrer le graphe comme image</translation>
    </message>
    <message>
        <source>As P&amp;DF...</source>
        <translation>En P&amp;DF...</translation>
    </message>
    <message>
        <source>Save the graph as a document</source>
        <translation>Enregistrer le graphe comme document</translation>
    </message>
    <message>
        <source>&amp;Copy as Command</source>
        <translation>&amp;Copier comme commande</translation>
    </message>
    <message>
        <source>As Shell Sc&amp;ript...</source>
        <translation>En sc&amp;ript shell...</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Fermer</translation>
    </message>
    <message>
        <source>Close the tab</source>
        <translation>Fermer l&apos;onglet</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Quitter</translation>
    </message>
    <message>
        <source>Close the window</source>
        <translation>Fermer la fenêtre</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Annuler</translation>
    </message>
    <message>
        <source>Take back the last change</source>
        <translation>Annuler la dernière modification</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Rétablir</translation>
    </message>
    <message>
        <source>Make the change again that was taken back</source>
        <translation>Refaire la modification annulée</translation>
    </message>
    <message>
        <source>Cu&amp;t</source>
        <translation>&amp;Couper</translation>
    </message>
    <message>
        <source>Move the selected actions to the clipboard</source>
        <translation>Déplacer les actions sélectionnées dans le presse-papiers</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>C&amp;opier</translation>
    </message>
    <message>
        <source>Copy the selected actions and the links between them</source>
        <translation>Copier les actions sélectionnées et les liens entre elles</translation>
    </message>
    <message>
        <source>&amp;Paste</source>
        <translation>Co&amp;ller</translation>
    </message>
    <message>
        <source>Add the actions of the clipboard</source>
        <translation>Ajouter les actions du presse-papiers</translation>
    </message>
    <message>
        <source>Dup&amp;licate</source>
        <translation>&amp;Dupliquer</translation>
    </message>
    <message>
        <source>Add copies of the selected actions</source>
        <translation>Ajouter des copies des actions sélectionnées</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Supprimer</translation>
    </message>
    <message>
        <source>Remove the selected actions and links</source>
        <translation>Supprimer les actions et les liens sélectionnés</translation>
    </message>
    <message>
        <source>Select &amp;All</source>
        <translation>&amp;Tout sélectionner</translation>
    </message>
    <message>
        <source>Select all actions</source>
        <translation>Sélectionner toutes les actions</translation>
    </message>
    <message>
        <source>Re&amp;name</source>
        <translation>Re&amp;nommer</translation>
    </message>
    <message>
        <source>Change the name of the selected action</source>
        <translation>Changer le nom de l&apos;action sélectionnée</translation>
    </message>
    <message>
        <source>C&amp;omment</source>
        <translation>Co&amp;mmenter</translation>
    </message>
    <message>
        <source>Change the comment of the selected action</source>
        <translation>Changer le commentaire de l&apos;action sélectionnée</translation>
    </message>
    <message>
        <source>&amp;Variables</source>
        <translation>&amp;Variables</translation>
    </message>
    <message>
        <source>Edit the variables of the graph</source>
        <translation>Modifier les variables du graphe</translation>
    </message>
    <message>
        <source>&amp;Shortcuts...</source>
        <translation>Raccourc&amp;is...</translation>
    </message>
    <message>
        <source>List and change the shortcuts of all commands</source>
        <translation>Lister et changer les raccourcis de toutes les commandes</translation>
    </message>
    <message>
        <source>Pre&amp;ferences...</source>
        <translation>Pré&amp;férences...</translation>
    </message>
    <message>
        <source>Colours, text size, language and session</source>
        <translation>Couleurs, taille du texte, langue et session</translation>
    </message>
    <message>
        <source>Zoom &amp;In</source>
        <translation>Zoom &amp;avant</translation>
    </message>
    <message>
        <source>Show the graph larger</source>
        <translation>Agrandir le graphe</translation>
    </message>
    <message>
        <source>Zoom &amp;Out</source>
        <translation>Zoom a&amp;rrière</translation>
    </message>
    <message>
        <source>Show the graph smaller</source>
        <translation>Réduire le graphe</translation>
    </message>
    <message>
        <source>&amp;Actual Size</source>
        <translation>&amp;Taille réelle</translation>
    </message>
    <message>
        <source>Show the graph at 100 %</source>
        <translation>Afficher le graphe à 100&#xa0;%</translation>
    </message>
    <message>
        <source>&amp;Fit Graph</source>
        <translation>Ajuster le grap&amp;he</translation>
    </message>
    <message>
        <source>Show the whole graph</source>
        <translation>Afficher tout le graphe</translation>
    </message>
    <message>
        <source>Overvie&amp;w</source>
        <translation>Vue d&apos;&amp;ensemble</translation>
    </message>
    <message>
        <source>Show the whole graph small in a corner</source>
        <translation>Afficher tout le graphe en petit dans un coin</translation>
    </message>
    <message>
        <source>&amp;Snap to Grid</source>
        <translation>Aligner sur la &amp;grille</translation>
    </message>
    <message>
        <source>Place actions on a grid</source>
        <translation>Placer les actions sur une grille</translation>
    </message>
    <message>
        <source>&amp;Larger Text</source>
        <translation>Texte plu&amp;s grand</translation>
    </message>
    <message>
        <source>Make all texts of the window larger</source>
        <translation>Agrandir tous les textes de la fenêtre</translation>
    </message>
    <message>
        <source>S&amp;maller Text</source>
        <translation>Texte plus pet&amp;it</translation>
    </message>
    <message>
        <source>Make all texts of the window smaller</source>
        <translation>Réduire tous les textes de la fenêtre</translation>
    </message>
    <message>
        <source>&amp;Dark Colours</source>
        <translation>Couleurs so&amp;mbres</translation>
    </message>
    <message>
        <source>Light text on a dark background</source>
        <translation>Texte clair sur fond sombre</translation>
    </message>
    <message>
        <source>&amp;Panels</source>
        <translation>Panneau&amp;x</translation>
    </message>
    <message>
        <source>Show or hide parts of the window</source>
        <translation>Afficher ou masquer des parties de la fenêtre</translation>
    </message>
    <message>
        <source>F&amp;ull Screen</source>
        <translation>&amp;Plein écran</translation>
    </message>
    <message>
        <source>Use the whole screen</source>
        <translation>Utiliser tout l&apos;écran</translation>
    </message>
    <message>
        <source>&amp;Canvas</source>
        <translation>Cane&amp;vas</translation>
    </message>
    <message>
        <source>Put the keyboard focus on the graph</source>
        <translation>Donner le clavier au graphe</translation>
    </message>
    <message>
        <source>Palett&amp;e</source>
        <translation>Pa&amp;lette</translation>
    </message>
    <message>
        <source>Search an action to add to the graph</source>
        <translation>Chercher une action à ajouter au graphe</translation>
    </message>
    <message>
        <source>P&amp;roperties</source>
        <translation>Pr&amp;opriétés</translation>
    </message>
    <message>
        <source>Put the keyboard focus on the parameters of the selected action</source>
        <translation>Donner le clavier aux paramètres de l&apos;action sélectionnée</translation>
    </message>
    <message>
        <source>Outli&amp;ne</source>
        <translation>Pla&amp;n</translation>
    </message>
    <message>
        <source>Put the keyboard focus on the tree of actions and links</source>
        <translation>Donner le clavier à l&apos;arbre des actions et des liens</translation>
    </message>
    <message>
        <source>Pro&amp;blems</source>
        <translation>Pro&amp;blèmes</translation>
    </message>
    <message>
        <source>Put the keyboard focus on the list of problems</source>
        <translation>Donner le clavier à la liste des problèmes</translation>
    </message>
    <message>
        <source>Lo&amp;g</source>
        <translation>&amp;Journal</translation>
    </message>
    <message>
        <source>Put the keyboard focus on the log</source>
        <translation>Donner le clavier au journal</translation>
    </message>
    <message>
        <source>Da&amp;ta</source>
        <translation>&amp;Données</translation>
    </message>
    <message>
        <source>Put the keyboard focus on the rows of the selected action</source>
        <translation>Donner le clavier aux lignes de l&apos;action sélectionnée</translation>
    </message>
    <message>
        <source>Ne&amp;xt Tab</source>
        <translation>Onglet s&amp;uivant</translation>
    </message>
    <message>
        <source>Show the next tab</source>
        <translation>Afficher l&apos;onglet suivant</translation>
    </message>
    <message>
        <source>Pre&amp;vious Tab</source>
        <translation>Onglet pré&amp;cédent</translation>
    </message>
    <message>
        <source>Show the previous tab</source>
        <translation>Afficher l&apos;onglet précédent</translation>
    </message>
    <message>
        <source>&amp;Add Action...</source>
        <translation>&amp;Ajouter une action...</translation>
    </message>
    <message>
        <source>Search an action to add: after the selected action, or into the selected link</source>
        <translation>Chercher une action à ajouter&#xa0;: après l&apos;action sélectionnée, ou dans le lien sélectionné</translation>
    </message>
    <message>
        <source>&amp;Link...</source>
        <translation>&amp;Lier...</translation>
    </message>
    <message>
        <source>Link the selected action to another one, or two selected actions to each other</source>
        <translation>Lier l&apos;action sélectionnée à une autre, ou deux actions sélectionnées l&apos;une à l&apos;autre</translation>
    </message>
    <message>
        <source>&amp;Insert into Link</source>
        <translation>&amp;Insérer dans le lien</translation>
    </message>
    <message>
        <source>Insert the selected action into the selected link</source>
        <translation>Insérer l&apos;action sélectionnée dans le lien sélectionné</translation>
    </message>
    <message>
        <source>Lay &amp;Out</source>
        <translation>&amp;Disposer</translation>
    </message>
    <message>
        <source>Arrange all actions from left to right</source>
        <translation>Ranger toutes les actions de gauche à droite</translation>
    </message>
    <message>
        <source>Ali&amp;gn</source>
        <translation>Ali&amp;gner</translation>
    </message>
    <message>
        <source>Align the selected actions</source>
        <translation>Aligner les actions sélectionnées</translation>
    </message>
    <message>
        <source>&amp;Left Edges</source>
        <translation>Bords &amp;gauches</translation>
    </message>
    <message>
        <source>Move the selected actions to the leftmost one</source>
        <translation>Déplacer les actions sélectionnées vers celle de gauche</translation>
    </message>
    <message>
        <source>&amp;Centres</source>
        <translation>&amp;Centres</translation>
    </message>
    <message>
        <source>Move the selected actions above each other</source>
        <translation>Placer les actions sélectionnées l&apos;une sous l&apos;autre</translation>
    </message>
    <message>
        <source>&amp;Right Edges</source>
        <translation>Bords &amp;droits</translation>
    </message>
    <message>
        <source>Move the selected actions to the rightmost one</source>
        <translation>Déplacer les actions sélectionnées vers celle de droite</translation>
    </message>
    <message>
        <source>&amp;Top Edges</source>
        <translation>Bords &amp;supérieurs</translation>
    </message>
    <message>
        <source>Move the selected actions to the topmost one</source>
        <translation>Déplacer les actions sélectionnées vers la plus haute</translation>
    </message>
    <message>
        <source>&amp;Middles</source>
        <translation>&amp;Milieux</translation>
    </message>
    <message>
        <source>Move the selected actions next to each other</source>
        <translation>Placer les actions sélectionnées l&apos;une à côté de l&apos;autre</translation>
    </message>
    <message>
        <source>&amp;Bottom Edges</source>
        <translation>Bords &amp;inférieurs</translation>
    </message>
    <message>
        <source>Move the selected actions to the lowest one</source>
        <translation>Déplacer les actions sélectionnées vers la plus basse</translation>
    </message>
    <message>
        <source>Distribute &amp;Horizontally</source>
        <translation>Répartir &amp;horizontalement</translation>
    </message>
    <message>
        <source>Make the horizontal distances of the selected actions equal</source>
        <translation>Égaliser les distances horizontales des actions sélectionnées</translation>
    </message>
    <message>
        <source>Distribute &amp;Vertically</source>
        <translation>Répartir &amp;verticalement</translation>
    </message>
    <message>
        <source>Make the vertical distances of the selected actions equal</source>
        <translation>Égaliser les distances verticales des actions sélectionnées</translation>
    </message>
    <message>
        <source>Run the graph</source>
        <translation>Exécuter le graphe</translation>
    </message>
    <message>
        <source>Run up to &amp;Here</source>
        <translation>Exécuter &amp;jusqu&apos;ici</translation>
    </message>
    <message>
        <source>Run the selected action and all actions that it depends on</source>
        <translation>Exécuter l&apos;action sélectionnée et toutes celles dont elle dépend</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>&amp;Arrêter</translation>
    </message>
    <message>
        <source>Stop the run</source>
        <translation>Arrêter l&apos;exécution</translation>
    </message>
    <message>
        <source>Run A&amp;gain</source>
        <translation>&amp;Réexécuter</translation>
    </message>
    <message>
        <source>Repeat the last run, whole or up to an action</source>
        <translation>Répéter la dernière exécution, entière ou jusqu&apos;à une action</translation>
    </message>
    <message>
        <source>Show &amp;Data</source>
        <translation>Afficher les &amp;données</translation>
    </message>
    <message>
        <source>Show the rows of the selected action</source>
        <translation>Afficher les lignes de l&apos;action sélectionnée</translation>
    </message>
    <message>
        <source>&amp;Help on the Action</source>
        <translation>&amp;Aide sur l&apos;action</translation>
    </message>
    <message>
        <source>Describe the selected action and its parameters</source>
        <translation>Décrire l&apos;action sélectionnée et ses paramètres</translation>
    </message>
    <message>
        <source>&amp;Keyboard</source>
        <translation>&amp;Clavier</translation>
    </message>
    <message>
        <source>List all shortcuts</source>
        <translation>Lister tous les raccourcis</translation>
    </message>
    <message>
        <source>&amp;About</source>
        <translation>À &amp;propos</translation>
    </message>
    <message>
        <source>Version and modules</source>
        <translation>Version et modules</translation>
    </message>
    <message>
        <source>Add &amp;Note...</source>
        <translation>Ajouter une &amp;note...</translation>
    </message>
    <message>
        <source>Write a note on the canvas that belongs to no action</source>
        <translation>Écrire sur le canevas une note qui n’appartient à aucune action</translation>
    </message>
    <message>
        <source>Save the graph and copy the command that runs it</source>
        <translation>Enregistrer le graphe et copier la commande qui l&apos;exécute</translation>
    </message>
    <message>
        <source>Save the graph and a script that runs it</source>
        <translation>Enregistrer le graphe et un script qui l&apos;exécute</translation>
    </message>
    <message>
        <source>Delete and &amp;Join</source>
        <translation>Supprimer et &amp;joindre</translation>
    </message>
    <message>
        <source>Remove the selected actions and link those around them</source>
        <translation>Supprimer les actions sélectionnées et lier celles qui les entourent</translation>
    </message>
</context>
<context>
    <name>Examples</name>
    <message>
        <source>A presentation with one chart per slide, made from three tables and an included template.</source>
        <translation>Une présentation avec un graphique par diapositive, à partir de trois tables et d&apos;un modèle fourni.</translation>
    </message>
    <message>
        <source>A sheet with three charts, made from three tables and an included template.</source>
        <translation>Une feuille avec trois graphiques, à partir de trois tables et d&apos;un modèle fourni.</translation>
    </message>
    <message>
        <source>A Word letter with a picture for each row of a table, made from a template.</source>
        <translation>Une lettre Word avec une image pour chaque ligne d&apos;une table, à partir d&apos;un modèle.</translation>
    </message>
    <message>
        <source>A Word document with two tables, made from a template.</source>
        <translation>Un document Word avec deux tableaux, à partir d&apos;un modèle.</translation>
    </message>
    <message>
        <source>A presentation with a picture for each row of a table, made from a template.</source>
        <translation>Une présentation avec une image pour chaque ligne d&apos;une table, à partir d&apos;un modèle.</translation>
    </message>
    <message>
        <source>The chemical elements as a workbook: typed cells, dates, links and a defined name.</source>
        <translation>Les éléments chimiques dans un classeur&#xa0;: cellules typées, dates, liens et un nom défini.</translation>
    </message>
    <message>
        <source>Settings copied by the actions of the example module, which is built first.</source>
        <translation>Des réglages copiés par les actions du module d&apos;exemple, qu&apos;il faut d&apos;abord compiler.</translation>
    </message>
</context>
<context>
    <name>HelpView</name>
    <message>
        <source>Examples and messages</source>
        <translation>Exemples et messages</translation>
    </message>
    <message>
        <source>Parameters</source>
        <translation>Paramètres</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nom</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Type</translation>
    </message>
    <message>
        <source>Default</source>
        <translation>Défaut</translation>
    </message>
    <message>
        <source>Meaning</source>
        <translation>Signification</translation>
    </message>
    <message>
        <source>Inputs: %1, outputs: %2</source>
        <translation>Entrées&#xa0;: %1, sorties&#xa0;: %2</translation>
    </message>
    <message>
        <source>Files: %1</source>
        <translation>Fichiers&#xa0;: %1</translation>
    </message>
</context>
<context>
    <name>Panels</name>
    <message>
        <source>Advanced</source>
        <translation>Avancé</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Source</translation>
    </message>
    <message>
        <source>Levels and columns</source>
        <translation>Niveaux et colonnes</translation>
    </message>
    <message>
        <source>Added columns</source>
        <translation>Colonnes ajoutées</translation>
    </message>
    <message>
        <source>Errors</source>
        <translation>Erreurs</translation>
    </message>
    <message>
        <source>Columns</source>
        <translation>Colonnes</translation>
    </message>
    <message>
        <source>Values</source>
        <translation>Valeurs</translation>
    </message>
    <message>
        <source>Memo fields</source>
        <translation>Champs mémo</translation>
    </message>
    <message>
        <source>Rows</source>
        <translation>Lignes</translation>
    </message>
    <message>
        <source>Sheet</source>
        <translation>Feuille</translation>
    </message>
    <message>
        <source>Cells</source>
        <translation>Cellules</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Fichiers</translation>
    </message>
    <message>
        <source>Options</source>
        <translation>Options</translation>
    </message>
    <message>
        <source>Tables</source>
        <translation>Tableaux</translation>
    </message>
    <message>
        <source>Target</source>
        <translation>Destination</translation>
    </message>
    <message>
        <source>Dates</source>
        <translation>Dates</translation>
    </message>
    <message>
        <source>Numbers, formulas and links</source>
        <translation>Nombres, formules et liens</translation>
    </message>
    <message>
        <source>Structure</source>
        <translation>Structure</translation>
    </message>
    <message>
        <source>Several files</source>
        <translation>Plusieurs fichiers</translation>
    </message>
    <message>
        <source>Storage</source>
        <translation>Stockage</translation>
    </message>
    <message>
        <source>Charts</source>
        <translation>Graphiques</translation>
    </message>
    <message>
        <source>Text columns</source>
        <translation>Colonnes de textes</translation>
    </message>
    <message>
        <source>Variables</source>
        <translation>Variables</translation>
    </message>
    <message>
        <source>Archive member</source>
        <translation>Membre de l&apos;archive</translation>
    </message>
    <message>
        <source>Name of the member inside %1</source>
        <translation>Nom du membre dans %1</translation>
    </message>
    <message>
        <source>%1:</source>
        <translation>%1&#xa0;:</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Aperçu</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Texte</translation>
    </message>
    <message>
        <source>Types</source>
        <translation>Types</translation>
    </message>
    <message>
        <source>Values that do not fit</source>
        <translation>Valeurs inadaptées</translation>
    </message>
    <message>
        <source>Keys</source>
        <translation>Clés</translation>
    </message>
    <message>
        <source>Order</source>
        <translation>Ordre</translation>
    </message>
    <message>
        <source>Look</source>
        <translation>Présentation</translation>
    </message>
    <message>
        <source>off</source>
        <translation>désactivé</translation>
    </message>
    <message>
        <source>on</source>
        <translation>activé</translation>
    </message>
    <message>
        <source>“%1”</source>
        <translation>«&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>Default: %1</source>
        <translation>Par défaut&#xa0;: %1</translation>
    </message>
    <message>
        <source>found in the file</source>
        <translation>trouvé dans le fichier</translation>
    </message>
    <message>
        <source>comma</source>
        <translation>virgule</translation>
    </message>
    <message>
        <source>semicolon</source>
        <translation>point-virgule</translation>
    </message>
    <message>
        <source>tab</source>
        <translation>tabulation</translation>
    </message>
    <message>
        <source>vertical bar</source>
        <translation>barre verticale</translation>
    </message>
    <message>
        <source>all languages</source>
        <translation>toutes les langues</translation>
    </message>
    <message>
        <source>Western Europe, Windows</source>
        <translation>Europe occidentale, Windows</translation>
    </message>
    <message>
        <source>Western Europe, without the euro sign</source>
        <translation>Europe occidentale, sans le signe de l&apos;euro</translation>
    </message>
    <message>
        <source>Western Europe, with the euro sign</source>
        <translation>Europe occidentale, avec le signe de l&apos;euro</translation>
    </message>
    <message>
        <source>Central Europe, Windows</source>
        <translation>Europe centrale, Windows</translation>
    </message>
    <message>
        <source>Cyrillic, Windows</source>
        <translation>Cyrillique, Windows</translation>
    </message>
    <message>
        <source>all languages, two bytes</source>
        <translation>toutes les langues, deux octets</translation>
    </message>
    <message>
        <source>Chinese</source>
        <translation>Chinois</translation>
    </message>
    <message>
        <source>Japanese, Windows</source>
        <translation>Japonais, Windows</translation>
    </message>
    <message>
        <source>point</source>
        <translation>point</translation>
    </message>
    <message>
        <source>double quote</source>
        <translation>guillemet double</translation>
    </message>
    <message>
        <source>single quote</source>
        <translation>apostrophe</translation>
    </message>
    <message>
        <source>the run fails</source>
        <translation>l&apos;exécution échoue</translation>
    </message>
    <message>
        <source>fill short lines, cut long ones</source>
        <translation>compléter les lignes courtes, couper les longues</translation>
    </message>
    <message>
        <source>line feed (LF)</source>
        <translation>saut de ligne (LF)</translation>
    </message>
    <message>
        <source>carriage return and line feed (CR LF)</source>
        <translation>retour chariot et saut de ligne (CR LF)</translation>
    </message>
    <message>
        <source>as the file declares</source>
        <translation>comme le fichier le déclare</translation>
    </message>
    <message>
        <source>line feed (LF or CR LF)</source>
        <translation>saut de ligne (LF ou CR LF)</translation>
    </message>
    <message>
        <source>line feed, or carriage return in a file without line feeds</source>
        <translation>saut de ligne, ou retour chariot dans un fichier sans saut de ligne</translation>
    </message>
    <message>
        <source>All texts; or K,F,U …</source>
        <translation>Tout en texte ; ou K,F,U …</translation>
    </message>
    <message>
        <source>Type a column and its format: day=dd.MM.yyyy</source>
        <translation>Taper une colonne et son format : jour=dd.MM.yyyy</translation>
    </message>
    <message>
        <source>no style</source>
        <translation>aucun style</translation>
    </message>
    <message>
        <source>bold</source>
        <translation>gras</translation>
    </message>
    <message>
        <source>light blue background</source>
        <translation>fond bleu clair</translation>
    </message>
    <message>
        <source>bold, light blue background</source>
        <translation>gras, fond bleu clair</translation>
    </message>
    <message>
        <source>the same sheet, with a warning</source>
        <translation>la même feuille, avec un avertissement</translation>
    </message>
    <message>
        <source>further sheets</source>
        <translation>d&apos;autres feuilles</translation>
    </message>
    <message>
        <source>from the header and the first rows</source>
        <translation>d&apos;après l&apos;en-tête et les premières lignes</translation>
    </message>
</context>
<context>
    <name>Parameters</name>
    <message>
        <source>Create a chart into any MS-Office document</source>
        <translation>Créer un graphique dans un document MS-Office</translation>
    </message>
    <message>
        <source>Number of input pins</source>
        <translation>Nombre d&apos;entrées</translation>
    </message>
    <message>
        <source>Number of tables that supply data for the charts.</source>
        <translation>Nombre de tables qui fournissent les données des graphiques.</translation>
    </message>
    <message>
        <source>Document</source>
        <translation>Document</translation>
    </message>
    <message>
        <source>Document to write (.xlsx, .docx or .pptx).</source>
        <translation>Document à écrire (.xlsx, .docx ou .pptx).</translation>
    </message>
    <message>
        <source>Template</source>
        <translation>Modèle</translation>
    </message>
    <message>
        <source>Document with the charts; a name that starts with &gt; is one of the included templates.</source>
        <translation>Document avec les graphiques&#xa0;; un nom qui commence par &gt; désigne un des modèles fournis.</translation>
    </message>
    <message>
        <source>Clean tags</source>
        <translation>Nettoyer les balises</translation>
    </message>
    <message>
        <source>Writes the reference of each tag in its place, so that a series named [[KOBData Sales]] appears as Sales. A series whose name is a cell gets the reference as its own name. Otherwise the tags stay visible.</source>
        <translation>Écrit la référence de chaque balise à sa place&#xa0;: une série nommée [[KOBData Sales]] apparaît comme Sales. Une série dont le nom est une cellule reçoit la référence comme nom propre. Sinon, les balises restent visibles.</translation>
    </message>
    <message>
        <source>Charts</source>
        <translation>Graphiques</translation>
    </message>
    <message>
        <source>One Chart (type, and name of its [[KOBData name]] tag) per series, with one axis (pinIdx and a column name) each for the categories, the values and the other data of the type.</source>
        <translation>Un Chart (type et nom de sa balise [[KOBData nom]]) par série, avec un axis (pinIdx et nom de colonne) pour les catégories, pour les valeurs et pour chaque autre donnée du type.</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Type</translation>
    </message>
    <message>
        <source>Type of the chart. A run uses that of the template.</source>
        <translation>Type du graphique. L&apos;exécution utilise celui du modèle.</translation>
    </message>
    <message>
        <source>bar</source>
        <translation>barres</translation>
    </message>
    <message>
        <source>3D bar</source>
        <translation>barres 3D</translation>
    </message>
    <message>
        <source>line</source>
        <translation>courbe</translation>
    </message>
    <message>
        <source>3D line</source>
        <translation>courbe 3D</translation>
    </message>
    <message>
        <source>pie</source>
        <translation>secteurs</translation>
    </message>
    <message>
        <source>pie of pie</source>
        <translation>secteurs de secteurs</translation>
    </message>
    <message>
        <source>3D pie</source>
        <translation>secteurs 3D</translation>
    </message>
    <message>
        <source>area</source>
        <translation>aires</translation>
    </message>
    <message>
        <source>3D area</source>
        <translation>aires 3D</translation>
    </message>
    <message>
        <source>scatter</source>
        <translation>nuage de points</translation>
    </message>
    <message>
        <source>stock</source>
        <translation>boursier</translation>
    </message>
    <message>
        <source>3D surface</source>
        <translation>surface 3D</translation>
    </message>
    <message>
        <source>doughnut</source>
        <translation>anneau</translation>
    </message>
    <message>
        <source>bubble</source>
        <translation>bulles</translation>
    </message>
    <message>
        <source>radar</source>
        <translation>radar</translation>
    </message>
    <message>
        <source>Tag</source>
        <translation>Balise</translation>
    </message>
    <message>
        <source>Reference of the tag [[KOBData reference]] in the template.</source>
        <translation>Référence de la balise [[KOBData référence]] dans le modèle.</translation>
    </message>
    <message>
        <source>Axes</source>
        <translation>Axes</translation>
    </message>
    <message>
        <source>Data of the categories, the values, the bubble sizes, and the plus and minus error bars, as far as the type has them.</source>
        <translation>Données des catégories, des valeurs, des tailles de bulles et des barres d&apos;erreur plus et moins, selon le type.</translation>
    </message>
    <message>
        <source>Input pin</source>
        <translation>Entrée</translation>
    </message>
    <message>
        <source>Number of the input pin with the data, from 0.</source>
        <translation>Numéro de l&apos;entrée qui fournit les données, à partir de 0.</translation>
    </message>
    <message>
        <source>Column</source>
        <translation>Colonne</translation>
    </message>
    <message>
        <source>Name of the column with the data.</source>
        <translation>Nom de la colonne des données.</translation>
    </message>
    <message>
        <source>Read a MS-Excel file</source>
        <translation>Lire un fichier MS-Excel</translation>
    </message>
    <message>
        <source>Read the file name from input pin 0</source>
        <translation>Lire le nom du fichier sur l&apos;entrée 0</translation>
    </message>
    <message>
        <source>Reads the file name from the first column of the first row of input pin 0.</source>
        <translation>Lit le nom du fichier dans la première colonne de la première ligne de l&apos;entrée 0.</translation>
    </message>
    <message>
        <source>Select the sheet</source>
        <translation>Choix de la feuille</translation>
    </message>
    <message>
        <source>Whether sheetIdx or sheetName selects the sheet.</source>
        <translation>Indique si sheetIdx ou sheetName désigne la feuille.</translation>
    </message>
    <message>
        <source>by number</source>
        <translation>par numéro</translation>
    </message>
    <message>
        <source>by name</source>
        <translation>par nom</translation>
    </message>
    <message>
        <source>Sheet number</source>
        <translation>Numéro de la feuille</translation>
    </message>
    <message>
        <source>Number of the sheet, from 1.</source>
        <translation>Numéro de la feuille, à partir de 1.</translation>
    </message>
    <message>
        <source>Sheet name</source>
        <translation>Nom de la feuille</translation>
    </message>
    <message>
        <source>Name of the sheet.</source>
        <translation>Nom de la feuille.</translation>
    </message>
    <message>
        <source>The first row holds the column names</source>
        <translation>La première ligne contient les noms des colonnes</translation>
    </message>
    <message>
        <source>Reads the column names from the first row. Off: columns are named after their letters.</source>
        <translation>Lit les noms des colonnes dans la première ligne. Sinon, les colonnes portent leurs lettres comme noms.</translation>
    </message>
    <message>
        <source>Add a column with the file name</source>
        <translation>Ajouter une colonne avec le nom du fichier</translation>
    </message>
    <message>
        <source>Adds the last column _FileNames with the name of the file of each row.</source>
        <translation>Ajoute en dernier la colonne _FileNames avec le nom du fichier de chaque ligne.</translation>
    </message>
    <message>
        <source>A missing file is an error</source>
        <translation>Un fichier absent est une erreur</translation>
    </message>
    <message>
        <source>Fails when a file is missing. Off: logs a warning.</source>
        <translation>Échoue si un fichier est absent. Sinon, émet un avertissement.</translation>
    </message>
    <message>
        <source>Sheets</source>
        <translation>Feuilles</translation>
    </message>
    <message>
        <source>Which sheets are read. A pattern is the sheet name with * and ?.</source>
        <translation>Feuilles à lire. Un motif est le nom de la feuille avec * et&#xa0;?.</translation>
    </message>
    <message>
        <source>the selected sheet</source>
        <translation>la feuille choisie</translation>
    </message>
    <message>
        <source>the first sheet with data</source>
        <translation>la première feuille avec des données</translation>
    </message>
    <message>
        <source>all sheets whose name matches the pattern</source>
        <translation>toutes les feuilles dont le nom correspond au motif</translation>
    </message>
    <message>
        <source>all sheets</source>
        <translation>toutes les feuilles</translation>
    </message>
    <message>
        <source>Skip hidden sheets</source>
        <translation>Ignorer les feuilles masquées</translation>
    </message>
    <message>
        <source>Leaves hidden sheets out when several sheets or the first one with data are read.</source>
        <translation>Omet les feuilles masquées quand plusieurs feuilles, ou la première avec des données, sont lues.</translation>
    </message>
    <message>
        <source>Add a column with the sheet name</source>
        <translation>Ajouter une colonne avec le nom de la feuille</translation>
    </message>
    <message>
        <source>Adds the column _SheetName. Several sheets have it in any case.</source>
        <translation>Ajoute la colonne _SheetName. Elle est toujours ajoutée pour plusieurs feuilles.</translation>
    </message>
    <message>
        <source>Range</source>
        <translation>Plage</translation>
    </message>
    <message>
        <source>Cells such as B2:D9, B2: (to the end), A:C or 3:10, or the name of a table or of a defined name. Empty: all cells.</source>
        <translation>Cellules, par exemple B2:D9, B2: (jusqu&apos;à la fin), A:C ou 3:10, ou bien le nom d&apos;un tableau ou un nom défini. Vide&#xa0;: toutes les cellules.</translation>
    </message>
    <message>
        <source>Rows to skip</source>
        <translation>Lignes à ignorer</translation>
    </message>
    <message>
        <source>Rows at the beginning that are not read, before the column names.</source>
        <translation>Lignes du début qui ne sont pas lues, avant les noms des colonnes.</translation>
    </message>
    <message>
        <source>Empty rows</source>
        <translation>Lignes vides</translation>
    </message>
    <message>
        <source>What happens to rows without a cell between others.</source>
        <translation>Traitement des lignes sans cellule situées entre d&apos;autres lignes.</translation>
    </message>
    <message>
        <source>keep them</source>
        <translation>les garder</translation>
    </message>
    <message>
        <source>skip them</source>
        <translation>les ignorer</translation>
    </message>
    <message>
        <source>stop at the first one</source>
        <translation>s&apos;arrêter à la première</translation>
    </message>
    <message>
        <source>Fill merged cells</source>
        <translation>Remplir les cellules fusionnées</translation>
    </message>
    <message>
        <source>All cells of a merged range have its value. Off: only the first one has it.</source>
        <translation>Toutes les cellules d&apos;une plage fusionnée ont sa valeur. Sinon, seule la première l&apos;a.</translation>
    </message>
    <message>
        <source>Skip hidden rows</source>
        <translation>Ignorer les lignes masquées</translation>
    </message>
    <message>
        <source>Leaves hidden rows out.</source>
        <translation>Omet les lignes masquées.</translation>
    </message>
    <message>
        <source>Skip hidden columns</source>
        <translation>Ignorer les colonnes masquées</translation>
    </message>
    <message>
        <source>Leaves hidden columns out.</source>
        <translation>Omet les colonnes masquées.</translation>
    </message>
    <message>
        <source>All columns are texts</source>
        <translation>Toutes les colonnes sont des textes</translation>
    </message>
    <message>
        <source>Reads all columns as texts. Off: the cells decide the types.</source>
        <translation>Lit toutes les colonnes comme des textes. Sinon, les cellules déterminent les types.</translation>
    </message>
    <message>
        <source>Rows that decide types</source>
        <translation>Lignes qui déterminent les types</translation>
    </message>
    <message>
        <source>Rows with cells that decide whether a column has numbers or texts; 0: all. A number column becomes a text column when a later row has a text, with a warning.</source>
        <translation>Lignes dont les cellules déterminent si une colonne contient des nombres ou des textes&#xa0;; 0&#xa0;: toutes. Une colonne de nombres devient une colonne de textes, avec un avertissement, si une ligne suivante contient un texte.</translation>
    </message>
    <message>
        <source>Do not check later rows</source>
        <translation>Ne pas vérifier les lignes suivantes</translation>
    </message>
    <message>
        <source>Reads only the rows of scanRows to decide types, so that the first rows arrive early. A later cell that does not fit is an error.</source>
        <translation>Ne lit que les lignes de scanRows pour déterminer les types&#xa0;: les premières lignes arrivent plus tôt. Une cellule suivante qui ne convient pas est une erreur.</translation>
    </message>
    <message>
        <source>Dates</source>
        <translation>Dates</translation>
    </message>
    <message>
        <source>How dates are read: as texts such as 2024-02-29, or as the numbers of days that the workbook stores.</source>
        <translation>Lecture des dates&#xa0;: comme des textes tels que 2024-02-29, ou comme les nombres de jours enregistrés dans le classeur.</translation>
    </message>
    <message>
        <source>ISO 8601 texts</source>
        <translation>textes ISO 8601</translation>
    </message>
    <message>
        <source>serial numbers</source>
        <translation>numéros de série</translation>
    </message>
    <message>
        <source>Cells with errors</source>
        <translation>Cellules en erreur</translation>
    </message>
    <message>
        <source>How cells such as #N/A are read: as texts, or as missing values with a warning.</source>
        <translation>Lecture des cellules telles que #N/A&#xa0;: comme des textes, ou comme des valeurs manquantes avec un avertissement.</translation>
    </message>
    <message>
        <source>texts</source>
        <translation>textes</translation>
    </message>
    <message>
        <source>missing</source>
        <translation>valeurs manquantes</translation>
    </message>
    <message>
        <source>Join columns by name</source>
        <translation>Réunir les colonnes par nom</translation>
    </message>
    <message>
        <source>Joins the columns of several sheets or files by name. Off: all must have the same columns.</source>
        <translation>Réunit par nom les colonnes de plusieurs feuilles ou fichiers. Sinon, tous doivent avoir les mêmes colonnes.</translation>
    </message>
    <message>
        <source>Retry for</source>
        <translation>Réessayer pendant</translation>
    </message>
    <message>
        <source>How long reading a file is retried while it cannot be read; -1: without limit.</source>
        <translation>Durée pendant laquelle la lecture d&apos;un fichier illisible est réessayée&#xa0;; -1&#xa0;: sans limite.</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Fichier</translation>
    </message>
    <message>
        <source>Workbook to read, or a pattern such as *.xlsx.</source>
        <translation>Classeur à lire, ou motif tel que *.xlsx.</translation>
    </message>
    <message>
        <source>Read an Old MS-Excel file</source>
        <translation>Lire un ancien fichier MS-Excel</translation>
    </message>
    <message>
        <source>Read Sheet Names from MS-Excel files(old&amp;&amp;new)</source>
        <translation>Lire les noms des feuilles de fichiers MS-Excel (anciens &amp;&amp; nouveaux)</translation>
    </message>
    <message>
        <source>Workbook whose sheets are listed, or a pattern such as *.xlsx.</source>
        <translation>Classeur dont les feuilles sont listées, ou motif tel que *.xlsx.</translation>
    </message>
    <message>
        <source>Create or update a MS-Excel file</source>
        <translation>Créer ou mettre à jour un fichier MS-Excel</translation>
    </message>
    <message>
        <source>What to do</source>
        <translation>Opération</translation>
    </message>
    <message>
        <source>Whether a new workbook is written, or an existing one is updated in place or as a copy.</source>
        <translation>Indique si un nouveau classeur est écrit, ou si un classeur existant est mis à jour sur place ou dans une copie.</translation>
    </message>
    <message>
        <source>Create a new Excel File (or overwrite an existing file)</source>
        <translation>Créer un fichier Excel (ou remplacer un fichier existant)</translation>
    </message>
    <message>
        <source>Update an existing File by adding a new Sheet</source>
        <translation>Mettre à jour un fichier en ajoutant une feuille</translation>
    </message>
    <message>
        <source>Update an existing File by changing an existing Sheet</source>
        <translation>Mettre à jour un fichier en modifiant une feuille</translation>
    </message>
    <message>
        <source>Copy and update the duplicate by adding a new Sheet</source>
        <translation>Copier, puis ajouter une feuille à la copie</translation>
    </message>
    <message>
        <source>Copy and update the duplicate by changing an existing Sheet</source>
        <translation>Copier, puis modifier une feuille de la copie</translation>
    </message>
    <message>
        <source>Workbook to copy</source>
        <translation>Classeur à copier</translation>
    </message>
    <message>
        <source>Workbook that modes 3 and 4 read; it is not changed.</source>
        <translation>Classeur lu par les modes 3 et 4&#xa0;; il n&apos;est pas modifié.</translation>
    </message>
    <message>
        <source>Workbook to write</source>
        <translation>Classeur à écrire</translation>
    </message>
    <message>
        <source>Workbook that is written; modes 1 and 2 read it first.</source>
        <translation>Classeur qui est écrit&#xa0;; les modes 1 et 2 le lisent d&apos;abord.</translation>
    </message>
    <message>
        <source>How modes 2 and 4 find the sheet to change: by sheetIdx or by sheetName. Any other value adds a sheet.</source>
        <translation>Recherche, par les modes 2 et 4, de la feuille à modifier&#xa0;: par sheetIdx ou par sheetName. Toute autre valeur ajoute une feuille.</translation>
    </message>
    <message>
        <source>Name of the new sheet or of the sheet to change.</source>
        <translation>Nom de la nouvelle feuille ou de la feuille à modifier.</translation>
    </message>
    <message>
        <source>Overwrite sheet content starting at row:
(use &quot;0&quot; to append rows at the end of the sheet)</source>
        <translation>Remplacer le contenu de la feuille à partir de la ligne&#xa0;:
(«&#xa0;0&#xa0;» ajoute les lignes à la fin de la feuille)</translation>
    </message>
    <message>
        <source>First row that modes 2 and 4 overwrite; 0 appends after the last row.</source>
        <translation>Première ligne remplacée par les modes 2 et 4&#xa0;; 0 ajoute après la dernière ligne.</translation>
    </message>
    <message>
        <source>Defined name</source>
        <translation>Nom défini</translation>
    </message>
    <message>
        <source>Name given to the cells that are written; empty for none.</source>
        <translation>Nom donné aux cellules écrites&#xa0;; vide&#xa0;: aucun.</translation>
    </message>
    <message>
        <source>The defined name includes the header row</source>
        <translation>Le nom défini comprend la ligne d&apos;en-tête</translation>
    </message>
    <message>
        <source>The cells of the defined name include the header row. Default on in graphs saved by version 2.56 or older.</source>
        <translation>Les cellules du nom défini comprennent la ligne d&apos;en-tête. Activé par défaut dans les graphes enregistrés par la version 2.56 ou une version antérieure.</translation>
    </message>
    <message>
        <source>Format of decimal numbers</source>
        <translation>Format des nombres décimaux</translation>
    </message>
    <message>
        <source>printf format with one conversion of a floating-point number; empty: the fewest digits that read back as the same number.</source>
        <translation>Format printf avec une conversion d&apos;un nombre à virgule flottante&#xa0;; vide&#xa0;: le moins de chiffres possible pour relire le même nombre.</translation>
    </message>
    <message>
        <source>Create the Excel file and/or the Excel Sheet if it does not exists</source>
        <translation>Créer le fichier ou la feuille Excel s&apos;ils n&apos;existent pas</translation>
    </message>
    <message>
        <source>Creates a missing workbook or sheet. Off: it is an error.</source>
        <translation>Crée le classeur ou la feuille qui manque. Sinon, c&apos;est une erreur.</translation>
    </message>
    <message>
        <source>Check for columns of the same name</source>
        <translation>Vérifier que les noms des colonnes diffèrent</translation>
    </message>
    <message>
        <source>Reports an error when two written columns have the same name.</source>
        <translation>Signale une erreur si deux colonnes écrites ont le même nom.</translation>
    </message>
    <message>
        <source>Recompute formulas when the workbook is opened</source>
        <translation>Recalculer les formules à l&apos;ouverture du classeur</translation>
    </message>
    <message>
        <source>Marks an updated workbook for a full calculation on load.</source>
        <translation>Marque un classeur mis à jour pour un calcul complet au chargement.</translation>
    </message>
    <message>
        <source>Write all columns</source>
        <translation>Écrire toutes les colonnes</translation>
    </message>
    <message>
        <source>Writes every column. Off: only the columns of ToWrite, in that order.</source>
        <translation>Écrit toutes les colonnes. Sinon, seulement les colonnes de ToWrite, dans cet ordre.</translation>
    </message>
    <message>
        <source>Write the column names</source>
        <translation>Écrire les noms des colonnes</translation>
    </message>
    <message>
        <source>Writes a header row with the column names.</source>
        <translation>Écrit une ligne d&apos;en-tête avec les noms des colonnes.</translation>
    </message>
    <message>
        <source>Leave cells of NaN and infinite numbers empty</source>
        <translation>Laisser vides les cellules des nombres NaN et infinis</translation>
    </message>
    <message>
        <source>Leaves cells of NaN and infinite numbers empty. Off: they are written as the texts nan, inf and -inf.</source>
        <translation>Laisse vides les cellules des nombres NaN et infinis. Sinon, elles contiennent les textes nan, inf et -inf.</translation>
    </message>
    <message>
        <source>Decimal comma</source>
        <translation>Virgule décimale</translation>
    </message>
    <message>
        <source>Saved with the graph; has no effect on the cells.</source>
        <translation>Enregistré avec le graphe&#xa0;; sans effet sur les cellules.</translation>
    </message>
    <message>
        <source>Create the folder of the workbook</source>
        <translation>Créer le dossier du classeur</translation>
    </message>
    <message>
        <source>Creates missing folders of a new workbook.</source>
        <translation>Crée les dossiers manquants d&apos;un nouveau classeur.</translation>
    </message>
    <message>
        <source>Write a workbook even without rows</source>
        <translation>Écrire un classeur même sans lignes</translation>
    </message>
    <message>
        <source>Writes the sheet with its header row even when there is no row.</source>
        <translation>Écrit la feuille avec sa ligne d&apos;en-tête même s&apos;il n&apos;y a aucune ligne.</translation>
    </message>
    <message>
        <source>Texts that start with &quot;=&quot; are formulas</source>
        <translation>Les textes qui commencent par «&#xa0;=&#xa0;» sont des formules</translation>
    </message>
    <message>
        <source>Text cells that start with &quot;=&quot; are written as formulas, in all text columns.</source>
        <translation>Les textes qui commencent par «&#xa0;=&#xa0;» sont écrits comme des formules, dans toutes les colonnes de textes.</translation>
    </message>
    <message>
        <source>Recompute and save the workbook with the spreadsheet application</source>
        <translation>Recalculer et enregistrer le classeur avec le tableur</translation>
    </message>
    <message>
        <source>Opens and saves the written workbook with the installed spreadsheet application.</source>
        <translation>Ouvre et enregistre le classeur écrit avec le tableur installé.</translation>
    </message>
    <message>
        <source>Dates before March 1900 as the spreadsheet counts them</source>
        <translation>Dates avant mars 1900 comptées comme le tableur</translation>
    </message>
    <message>
        <source>Date serials below 61 are decreased by one. Default off in graphs saved before version 3.04.</source>
        <translation>Les numéros de dates inférieurs à 61 sont diminués de un. Désactivé par défaut dans les graphes enregistrés avant la version 3.04.</translation>
    </message>
    <message>
        <source>URL(&quot;label&quot;,&quot;url&quot;) is a hyperlink</source>
        <translation>URL(&quot;label&quot;,&quot;url&quot;) est un lien hypertexte</translation>
    </message>
    <message>
        <source>Text cells of the form URL(&quot;label&quot;,&quot;url&quot;) or URL(&quot;url&quot;) become hyperlinks.</source>
        <translation>Les textes de la forme URL(&quot;label&quot;,&quot;url&quot;) ou URL(&quot;url&quot;) deviennent des liens hypertextes.</translation>
    </message>
    <message>
        <source>Truncate cells to fewer than 32768 characters</source>
        <translation>Tronquer les cellules à moins de 32768 caractères</translation>
    </message>
    <message>
        <source>Truncates longer cells to fewer than 32768 characters. Off: they are written whole, with a warning.</source>
        <translation>Tronque les cellules plus longues à moins de 32768 caractères. Sinon, elles sont écrites en entier, avec un avertissement.</translation>
    </message>
    <message>
        <source>Format of the dates in the table</source>
        <translation>Format des dates dans la table</translation>
    </message>
    <message>
        <source>How the texts of the ToDate columns are read.</source>
        <translation>Lecture des textes des colonnes de ToDate.</translation>
    </message>
    <message>
        <source>own format</source>
        <translation>format personnel</translation>
    </message>
    <message>
        <source>system short date</source>
        <translation>date courte du système</translation>
    </message>
    <message>
        <source>system long date</source>
        <translation>date longue du système</translation>
    </message>
    <message>
        <source>system short time</source>
        <translation>heure courte du système</translation>
    </message>
    <message>
        <source>system long time</source>
        <translation>heure longue du système</translation>
    </message>
    <message>
        <source>system short date and time</source>
        <translation>date et heure courtes du système</translation>
    </message>
    <message>
        <source>system long date and time</source>
        <translation>date et heure longues du système</translation>
    </message>
    <message>
        <source>Own date format</source>
        <translation>Format de date personnel</translation>
    </message>
    <message>
        <source>Format of the dates, for example yyyy-MM-dd or dd/MM/yyyy hh:mm:ss.</source>
        <translation>Format des dates, par exemple yyyy-MM-dd ou dd/MM/yyyy hh:mm:ss.</translation>
    </message>
    <message>
        <source>Without a format, read ISO 8601 dates</source>
        <translation>Sans format, lire les dates ISO 8601</translation>
    </message>
    <message>
        <source>With an empty dateFormat, reads dates such as 2024-02-29 and 2024-02-29T12:30:00. Off: no text is a date then.</source>
        <translation>Si dateFormat est vide, lit des dates telles que 2024-02-29 et 2024-02-29T12:30:00. Sinon, aucun texte n&apos;est alors une date.</translation>
    </message>
    <message>
        <source>Keep texts that are not dates</source>
        <translation>Garder les textes qui ne sont pas des dates</translation>
    </message>
    <message>
        <source>Texts in ToDate columns that are not dates, or before 1900, are written as texts. Off: their cells are empty, with a warning.</source>
        <translation>Les textes des colonnes de ToDate qui ne sont pas des dates, ou d&apos;avant 1900, sont écrits comme des textes. Sinon, leurs cellules sont vides, avec un avertissement.</translation>
    </message>
    <message>
        <source>Display of date cells</source>
        <translation>Affichage des dates</translation>
    </message>
    <message>
        <source>Number format of the date cells in the sheet.</source>
        <translation>Format de nombre des cellules de dates dans la feuille.</translation>
    </message>
    <message>
        <source>yyyy-MM-dd</source>
        <translation>yyyy-MM-dd</translation>
    </message>
    <message>
        <source>yyyy-MM-dd h:mm</source>
        <translation>yyyy-MM-dd h:mm</translation>
    </message>
    <message>
        <source>yyyy-MM-dd h:mm:ss</source>
        <translation>yyyy-MM-dd h:mm:ss</translation>
    </message>
    <message>
        <source>system date and time, short</source>
        <translation>date et heure du système, courtes</translation>
    </message>
    <message>
        <source>system date, short</source>
        <translation>date du système, courte</translation>
    </message>
    <message>
        <source>d-MMM-yy</source>
        <translation>d-MMM-yy</translation>
    </message>
    <message>
        <source>d-MMM</source>
        <translation>d-MMM</translation>
    </message>
    <message>
        <source>MMM-yy</source>
        <translation>MMM-yy</translation>
    </message>
    <message>
        <source>h:mm AM/PM</source>
        <translation>h:mm AM/PM</translation>
    </message>
    <message>
        <source>h:mm:ss AM/PM</source>
        <translation>h:mm:ss AM/PM</translation>
    </message>
    <message>
        <source>h:mm</source>
        <translation>h:mm</translation>
    </message>
    <message>
        <source>h:mm:ss</source>
        <translation>h:mm:ss</translation>
    </message>
    <message>
        <source>Wide date columns in a new sheet</source>
        <translation>Colonnes de dates larges dans une nouvelle feuille</translation>
    </message>
    <message>
        <source>Date columns of a new sheet are wide enough for their format. Off: they have the default width, in which most programs show ### instead of a date.</source>
        <translation>Les colonnes de dates d&apos;une nouvelle feuille sont assez larges pour leur format. Sinon, elles ont la largeur par défaut, dans laquelle la plupart des programmes affichent ### au lieu d&apos;une date.</translation>
    </message>
    <message>
        <source>Column to test</source>
        <translation>Colonne à tester</translation>
    </message>
    <message>
        <source>Column that is tested when writeAllRows is off.</source>
        <translation>Colonne testée quand writeAllRows est désactivé.</translation>
    </message>
    <message>
        <source>Value to test for</source>
        <translation>Valeur à rechercher</translation>
    </message>
    <message>
        <source>Rows with another text in testCol are not written.</source>
        <translation>Les lignes dont le texte dans testCol est différent ne sont pas écrites.</translation>
    </message>
    <message>
        <source>Write all rows</source>
        <translation>Écrire toutes les lignes</translation>
    </message>
    <message>
        <source>Writes every row. Off: only rows that pass the test.</source>
        <translation>Écrit toutes les lignes. Sinon, seulement celles qui satisfont le test.</translation>
    </message>
    <message>
        <source>Wait for other programs</source>
        <translation>Attendre les autres programmes</translation>
    </message>
    <message>
        <source>Columns to write</source>
        <translation>Colonnes à écrire</translation>
    </message>
    <message>
        <source>Columns that are written when writeAllColumns is off.</source>
        <translation>Colonnes écrites quand writeAllColumns est désactivé.</translation>
    </message>
    <message>
        <source>Date columns</source>
        <translation>Colonnes de dates</translation>
    </message>
    <message>
        <source>Text columns that are written as dates.</source>
        <translation>Colonnes de textes écrites comme des dates.</translation>
    </message>
    <message>
        <source>Formula columns</source>
        <translation>Colonnes de formules</translation>
    </message>
    <message>
        <source>Text columns that are written as formulas.</source>
        <translation>Colonnes de textes écrites comme des formules.</translation>
    </message>
    <message>
        <source>read SAS,SPSS or STATA dataset file</source>
        <translation>lire un jeu de données SAS, SPSS ou STATA</translation>
    </message>
    <message>
        <source>Read the file names from input pin 0</source>
        <translation>Lire les noms des fichiers sur l&apos;entrée 0</translation>
    </message>
    <message>
        <source>Reads the file names from the first column of input pin 0, one file per row.</source>
        <translation>Lit les noms des fichiers dans la première colonne de l&apos;entrée 0, un fichier par ligne.</translation>
    </message>
    <message>
        <source>Adds a last column with the name of the file of each row.</source>
        <translation>Ajoute en dernier une colonne avec le nom du fichier de chaque ligne.</translation>
    </message>
    <message>
        <source>Name the columns after the labels</source>
        <translation>Nommer les colonnes d&apos;après les libellés</translation>
    </message>
    <message>
        <source>Names the columns after the labels of the variables instead of their names.</source>
        <translation>Nomme les colonnes d&apos;après les libellés des variables au lieu de leurs noms.</translation>
    </message>
    <message>
        <source>Output value labels</source>
        <translation>Sortir les libellés des valeurs</translation>
    </message>
    <message>
        <source>Reads the labels of labelled values instead of the values.</source>
        <translation>Lit les libellés des valeurs qui en ont un, au lieu de ces valeurs.</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>Format of the data set. By default the ending of the file name determines it.</source>
        <translation>Format du jeu de données. Par défaut, l&apos;extension du fichier le détermine.</translation>
    </message>
    <message>
        <source>SAS File (.sas7bdat)</source>
        <translation>Fichier SAS (.sas7bdat)</translation>
    </message>
    <message>
        <source>SPSS File (.sav)</source>
        <translation>Fichier SPSS (.sav)</translation>
    </message>
    <message>
        <source>SPSS File (.por)</source>
        <translation>Fichier SPSS (.por)</translation>
    </message>
    <message>
        <source>Stata File (.dta)</source>
        <translation>Fichier Stata (.dta)</translation>
    </message>
    <message>
        <source>Buffer</source>
        <translation>Tampon</translation>
    </message>
    <message>
        <source>Size of the buffer between parser and rows.</source>
        <translation>Taille du tampon entre l&apos;analyseur et les lignes.</translation>
    </message>
    <message>
        <source>Encoding</source>
        <translation>Codage</translation>
    </message>
    <message>
        <source>Encoding of the texts in the file, for example WINDOWS-1252. UTF-8 uses the encoding that the file declares.</source>
        <translation>Codage des textes du fichier, par exemple WINDOWS-1252. UTF-8 utilise le codage que le fichier déclare.</translation>
    </message>
    <message>
        <source>Dates as text</source>
        <translation>Dates en texte</translation>
    </message>
    <message>
        <source>Reads dates, times and date-times as ISO 8601 text, for example 2026-01-31. Off: as the numbers that are stored.</source>
        <translation>Lit les dates et les heures comme des textes ISO 8601, par exemple 2026-01-31. Sinon, comme les nombres enregistrés.</translation>
    </message>
    <message>
        <source>Rows to read</source>
        <translation>Lignes à lire</translation>
    </message>
    <message>
        <source>Reads only this number of rows of each file; 0: all.</source>
        <translation>Ne lit que ce nombre de lignes de chaque fichier&#xa0;; 0&#xa0;: toutes.</translation>
    </message>
    <message>
        <source>Name of the column with the file name</source>
        <translation>Nom de la colonne du nom de fichier</translation>
    </message>
    <message>
        <source>Name of the column that outputFilenames adds.</source>
        <translation>Nom de la colonne que outputFilenames ajoute.</translation>
    </message>
    <message>
        <source>Data set to read.</source>
        <translation>Jeu de données à lire.</translation>
    </message>
    <message>
        <source>Catalogue</source>
        <translation>Catalogue</translation>
    </message>
    <message>
        <source>SAS catalogue (.sas7bcat) with the value labels of a SAS data set, for extractLabels.</source>
        <translation>Catalogue SAS (.sas7bcat) avec les libellés des valeurs d&apos;un jeu de données SAS, pour extractLabels.</translation>
    </message>
    <message>
        <source>Columns to read</source>
        <translation>Colonnes à lire</translation>
    </message>
    <message>
        <source>Names of the variables that are read. Empty: all.</source>
        <translation>Noms des variables à lire. Vide&#xa0;: toutes.</translation>
    </message>
    <message>
        <source>Read and Parse a multi-level XML file</source>
        <translation>Lire et analyser un fichier XML à plusieurs niveaux</translation>
    </message>
    <message>
        <source>Auto detects the encoding, System is the system&apos;s code page; otherwise the name of an encoding.</source>
        <translation>Auto détecte le codage, System est la page de codes du système&#xa0;; sinon, le nom d&apos;un codage.</translation>
    </message>
    <message>
        <source>XML column</source>
        <translation>Colonne XML</translation>
    </message>
    <message>
        <source>Input column that holds the XML texts.</source>
        <translation>Colonne d&apos;entrée qui contient les textes XML.</translation>
    </message>
    <message>
        <source>Read the XML</source>
        <translation>Lire le XML</translation>
    </message>
    <message>
        <source>Reads the file fileName, or the texts in colXML of the rows of input pin 0.</source>
        <translation>Lit le fichier fileName, ou les textes de colXML dans les lignes de l&apos;entrée 0.</translation>
    </message>
    <message>
        <source>from the file</source>
        <translation>dans le fichier</translation>
    </message>
    <message>
        <source>from input pin 0</source>
        <translation>sur l&apos;entrée 0</translation>
    </message>
    <message>
        <source>Skip invalid bytes</source>
        <translation>Ignorer les octets invalides</translation>
    </message>
    <message>
        <source>Skips bytes that cannot be converted, with a warning. Off: the action fails.</source>
        <translation>Ignore les octets qui ne peuvent pas être convertis, avec un avertissement. Sinon, l&apos;action échoue.</translation>
    </message>
    <message>
        <source>Minimum Input Buffer Size:</source>
        <translation>Taille minimale du tampon de lecture&#xa0;:</translation>
    </message>
    <message>
        <source>Smallest input buffer.</source>
        <translation>Plus petit tampon de lecture.</translation>
    </message>
    <message>
        <source>Sample</source>
        <translation>Échantillon</translation>
    </message>
    <message>
        <source>Number of records that are examined to find the levels automatically.</source>
        <translation>Nombre d&apos;enregistrements examinés pour trouver les niveaux automatiquement.</translation>
    </message>
    <message>
        <source>XML or HTML file to read, a pattern, or a member of an archive (archive.zip@member).</source>
        <translation>Fichier XML ou HTML à lire, motif, ou membre d&apos;une archive (archive.zip@membre).</translation>
    </message>
    <message>
        <source>Read CDATA sections</source>
        <translation>Lire les sections CDATA</translation>
    </message>
    <message>
        <source>Reads CDATA sections and &lt;PRE&gt; blocks as text of their element.</source>
        <translation>Lit les sections CDATA et les blocs &lt;PRE&gt; comme le texte de leur élément.</translation>
    </message>
    <message>
        <source>The file is HTML</source>
        <translation>Le fichier est du HTML</translation>
    </message>
    <message>
        <source>Reads HTML, including malformed pages.</source>
        <translation>Lit du HTML, y compris des pages mal formées.</translation>
    </message>
    <message>
        <source>Add the names of the repeated elements</source>
        <translation>Ajouter les noms des éléments répétés</translation>
    </message>
    <message>
        <source>Adds one column &quot;Level N Subtag&quot; per level.</source>
        <translation>Ajoute une colonne «&#xa0;Level N Subtag&#xa0;» par niveau.</translation>
    </message>
    <message>
        <source>Only the text of an element</source>
        <translation>Seulement le texte d&apos;un élément</translation>
    </message>
    <message>
        <source>Reads all the text in an element, including its sub-elements, without tags and with each run of spaces as one space. Off: only the text directly in the element.</source>
        <translation>Lit tout le texte d&apos;un élément et de ses sous-éléments, sans balises, chaque suite d&apos;espaces étant réduite à un espace. Sinon, seulement le texte placé directement dans l&apos;élément.</translation>
    </message>
    <message>
        <source>Indexes in paths count from 0</source>
        <translation>Les indices des chemins commencent à 0</translation>
    </message>
    <message>
        <source>Indexes in paths count from 0. Off: from 1.</source>
        <translation>Les indices des chemins commencent à 0. Sinon, à 1.</translation>
    </message>
    <message>
        <source>Output the tag names</source>
        <translation>Sortir les noms des balises</translation>
    </message>
    <message>
        <source>Reads an element that contains only sub-elements as the names of those. Off: as a missing value.</source>
        <translation>Lit un élément qui ne contient que des sous-éléments comme les noms de ceux-ci. Sinon, comme une valeur manquante.</translation>
    </message>
    <message>
        <source>Skip the rest of damaged files</source>
        <translation>Ignorer le reste des fichiers endommagés</translation>
    </message>
    <message>
        <source>Skips the rest of a file after a structure error, with a warning. Off: the action fails.</source>
        <translation>Ignore le reste d&apos;un fichier après une erreur de structure, avec un avertissement. Sinon, l&apos;action échoue.</translation>
    </message>
    <message>
        <source>Sorted summary of tag names</source>
        <translation>Résumé trié des noms de balises</translation>
    </message>
    <message>
        <source>Lists tag names in alphabetical order with their counts. Off: in document order.</source>
        <translation>Liste les noms des balises par ordre alphabétique avec leurs nombres. Sinon, dans l&apos;ordre du document.</translation>
    </message>
    <message>
        <source>Accept unknown entities</source>
        <translation>Accepter les entités inconnues</translation>
    </message>
    <message>
        <source>Leaves unknown entities unchanged. Off: they are structure errors.</source>
        <translation>Laisse les entités inconnues inchangées. Sinon, ce sont des erreurs de structure.</translation>
    </message>
    <message>
        <source>Ignore empty elements</source>
        <translation>Ignorer les éléments vides</translation>
    </message>
    <message>
        <source>Ignores elements without text, sub-elements and attributes in rows and lists of names; they still count in indexes.</source>
        <translation>Ignore dans les lignes et les listes de noms les éléments sans texte, sous-éléments ni attributs&#xa0;; ils comptent quand même dans les indices.</translation>
    </message>
    <message>
        <source>Accept invalid characters in tag names</source>
        <translation>Accepter les caractères invalides dans les noms de balises</translation>
    </message>
    <message>
        <source>Accepts invalid characters in tag names. Off: they are structure errors.</source>
        <translation>Accepte les caractères invalides dans les noms de balises. Sinon, ce sont des erreurs de structure.</translation>
    </message>
    <message>
        <source>Output whether the element exists</source>
        <translation>Indiquer si l&apos;élément existe</translation>
    </message>
    <message>
        <source>Outputs 1 if the element exists, else 0, instead of its text.</source>
        <translation>Donne 1 si l&apos;élément existe, sinon 0, au lieu de son texte.</translation>
    </message>
    <message>
        <source>Remove namespace prefixes</source>
        <translation>Retirer les préfixes d&apos;espaces de noms</translation>
    </message>
    <message>
        <source>Removes the namespace prefixes of elements.</source>
        <translation>Retire les préfixes d&apos;espaces de noms des éléments.</translation>
    </message>
    <message>
        <source>Copy the columns of the input row</source>
        <translation>Copier les colonnes de la ligne d&apos;entrée</translation>
    </message>
    <message>
        <source>Adds the columns of the input row before the extracted ones, when reading from the input pin.</source>
        <translation>Ajoute les colonnes de la ligne d&apos;entrée avant celles qui sont extraites, en lecture sur l&apos;entrée.</translation>
    </message>
    <message>
        <source>Number of occurrences of the first level that are skipped at the beginning of each document, for example the header row of an HTML table.</source>
        <translation>Nombre d&apos;occurrences du premier niveau ignorées au début de chaque document, par exemple la ligne d&apos;en-tête d&apos;un tableau HTML.</translation>
    </message>
    <message>
        <source>Warn about values that are not read</source>
        <translation>Avertir des valeurs qui ne sont pas lues</translation>
    </message>
    <message>
        <source>Logs a warning with the number of elements, attributes and list values of the occurrences that no item reads. Not for HTML.</source>
        <translation>Émet un avertissement avec le nombre d&apos;éléments, d&apos;attributs et de valeurs de listes des occurrences que rien ne lit. Pas pour HTML.</translation>
    </message>
    <message>
        <source>Levels</source>
        <translation>Niveaux</translation>
    </message>
    <message>
        <source>One Level (initialPath, subtagName) per repeated element, outermost first, with one e (name, path, tagName) per output column.</source>
        <translation>Un Level (initialPath, subtagName) par élément répété, du plus externe au plus interne, avec un e (name, path, tagName) par colonne de sortie.</translation>
    </message>
    <message>
        <source>Path of the element that contains the occurrences, from the document or from the occurrence of the level before.</source>
        <translation>Chemin de l&apos;élément qui contient les occurrences, à partir du document ou de l&apos;occurrence du niveau précédent.</translation>
    </message>
    <message>
        <source>Repeated element</source>
        <translation>Élément répété</translation>
    </message>
    <message>
        <source>Name of the repeated element. Empty: every sub-element.</source>
        <translation>Nom de l&apos;élément répété. Vide&#xa0;: chaque sous-élément.</translation>
    </message>
    <message>
        <source>Columns</source>
        <translation>Colonnes</translation>
    </message>
    <message>
        <source>The output columns, one element each.</source>
        <translation>Les colonnes de sortie, un élément pour chacune.</translation>
    </message>
    <message>
        <source>Name of the output column. Empty: the path.</source>
        <translation>Nom de la colonne de sortie. Vide&#xa0;: le chemin.</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>Chemin</translation>
    </message>
    <message>
        <source>Path of the value, from the occurrence. Empty: the occurrence itself.</source>
        <translation>Chemin de la valeur, à partir de l&apos;occurrence. Vide&#xa0;: l&apos;occurrence elle-même.</translation>
    </message>
    <message>
        <source>Reads the names of the sub-elements instead of the text.</source>
        <translation>Lit les noms des sous-éléments au lieu du texte.</translation>
    </message>
    <message>
        <source>Parts left out</source>
        <translation>Parties omises</translation>
    </message>
    <message>
        <source>Paths of parts that are left out on purpose: warnUnread does not count them. In the first level, /PATH begins at the document, and /PATH/ leaves out all parts between the records on the way to there.</source>
        <translation>Chemins des parties omises volontairement&#xa0;: warnUnread ne les compte pas. Au premier niveau, /CHEMIN part du document, et /CHEMIN/ omet toutes les parties entre les enregistrements jusque-là.</translation>
    </message>
    <message>
        <source>Create a multi-level XML file</source>
        <translation>Créer un fichier XML à plusieurs niveaux</translation>
    </message>
    <message>
        <source>XML file to write.</source>
        <translation>Fichier XML à écrire.</translation>
    </message>
    <message>
        <source>Open the file</source>
        <translation>Ouverture du fichier</translation>
    </message>
    <message>
        <source>Whether an existing file is replaced or extended.</source>
        <translation>Indique si un fichier existant est remplacé ou complété.</translation>
    </message>
    <message>
        <source>create or overwrite</source>
        <translation>créer ou remplacer</translation>
    </message>
    <message>
        <source>append</source>
        <translation>ajouter à la fin</translation>
    </message>
    <message>
        <source>Encoding of the file.</source>
        <translation>Codage du fichier.</translation>
    </message>
    <message>
        <source>UTF-8 with byte-order mark</source>
        <translation>UTF-8 avec marque d&apos;ordre des octets</translation>
    </message>
    <message>
        <source>UTF-8</source>
        <translation>UTF-8</translation>
    </message>
    <message>
        <source>UTF-16LE with byte-order mark</source>
        <translation>UTF-16LE avec marque d&apos;ordre des octets</translation>
    </message>
    <message>
        <source>UTF-16LE</source>
        <translation>UTF-16LE</translation>
    </message>
    <message>
        <source>Create the folder of the file</source>
        <translation>Créer le dossier du fichier</translation>
    </message>
    <message>
        <source>Creates missing folders of the file.</source>
        <translation>Crée les dossiers manquants du fichier.</translation>
    </message>
    <message>
        <source>Writes a decimal comma instead of the decimal point.</source>
        <translation>Écrit une virgule décimale au lieu du point décimal.</translation>
    </message>
    <message>
        <source>Indent the elements</source>
        <translation>Indenter les éléments</translation>
    </message>
    <message>
        <source>Writes indented elements, one per line.</source>
        <translation>Écrit les éléments avec une indentation, un par ligne.</translation>
    </message>
    <message>
        <source>Well-formed for all cells</source>
        <translation>Bien formé pour toutes les cellules</translation>
    </message>
    <message>
        <source>Escapes what parsers would reject or change, writes U+FFFD for characters that are not allowed in XML, and makes names of elements and attributes valid and distinct.</source>
        <translation>Échappe ce que les analyseurs refuseraient ou modifieraient, écrit U+FFFD pour les caractères interdits en XML et rend les noms des éléments et des attributs valides et distincts.</translation>
    </message>
    <message>
        <source>Indent of the outermost level</source>
        <translation>Indentation du niveau le plus externe</translation>
    </message>
    <message>
        <source>Number of spaces before an element of the first level; each level below has two more.</source>
        <translation>Nombre d&apos;espaces avant un élément du premier niveau&#xa0;; chaque niveau suivant en a deux de plus.</translation>
    </message>
    <message>
        <source>Missing text</source>
        <translation>Texte manquant</translation>
    </message>
    <message>
        <source>What is written for a missing text cell.</source>
        <translation>Ce qui est écrit pour un texte manquant.</translation>
    </message>
    <message>
        <source>write the null form</source>
        <translation>écrire la forme nulle</translation>
    </message>
    <message>
        <source>write an empty value</source>
        <translation>écrire une valeur vide</translation>
    </message>
    <message>
        <source>leave it out</source>
        <translation>l&apos;omettre</translation>
    </message>
    <message>
        <source>Missing number</source>
        <translation>Nombre manquant</translation>
    </message>
    <message>
        <source>What is written for a missing whole or decimal number.</source>
        <translation>Ce qui est écrit pour un nombre entier ou décimal manquant.</translation>
    </message>
    <message>
        <source>NaN and infinite numbers</source>
        <translation>Nombres NaN et infinis</translation>
    </message>
    <message>
        <source>What is written for NaN and infinite numbers.</source>
        <translation>Ce qui est écrit pour les nombres NaN et infinis.</translation>
    </message>
    <message>
        <source>write nan, inf or -inf</source>
        <translation>écrire nan, inf ou -inf</translation>
    </message>
    <message>
        <source>Write a file even without rows</source>
        <translation>Écrire un fichier même sans lignes</translation>
    </message>
    <message>
        <source>Writes a file with its start and end even when there is no row.</source>
        <translation>Écrit un fichier avec son début et sa fin même s&apos;il n&apos;y a aucune ligne.</translation>
    </message>
    <message>
        <source>Writes every column. Off: only the columns of ToWrite. Ignored when there are Levels.</source>
        <translation>Écrit toutes les colonnes. Sinon, seulement les colonnes de ToWrite. Ignoré s&apos;il y a des niveaux.</translation>
    </message>
    <message>
        <source>Start of the file</source>
        <translation>Début du fichier</translation>
    </message>
    <message>
        <source>Text at the start of every file.</source>
        <translation>Texte placé au début de chaque fichier.</translation>
    </message>
    <message>
        <source>End of the file</source>
        <translation>Fin du fichier</translation>
    </message>
    <message>
        <source>Text at the end of every file.</source>
        <translation>Texte placé à la fin de chaque fichier.</translation>
    </message>
    <message>
        <source>The structure of the file: one Level (name, partitionCol, commaSeparated) per nesting, the top level first, each with its Items (type, text, calledLevel, p1 and columns). Without levels, every row is one element with all its columns.</source>
        <translation>La structure du fichier&#xa0;: un Level (name, partitionCol, commaSeparated) par imbrication, le niveau supérieur d&apos;abord, chacun avec ses Items (type, text, calledLevel, p1 et columns). Sans niveaux, chaque ligne est un élément avec toutes ses colonnes.</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nom</translation>
    </message>
    <message>
        <source>Name by which an item refers to the level.</source>
        <translation>Nom par lequel un élément désigne le niveau.</translation>
    </message>
    <message>
        <source>Partition column</source>
        <translation>Colonne de partition</translation>
    </message>
    <message>
        <source>Rows with the same value in this column belong to the same array of the sub-level. The top level ignores it.</source>
        <translation>Les lignes qui ont la même valeur dans cette colonne appartiennent au même tableau du sous-niveau. Le niveau supérieur l&apos;ignore.</translation>
    </message>
    <message>
        <source>Separate the elements with commas</source>
        <translation>Séparer les éléments par des virgules</translation>
    </message>
    <message>
        <source>Writes a comma before each element but the first.</source>
        <translation>Écrit une virgule avant chaque élément sauf le premier.</translation>
    </message>
    <message>
        <source>Items</source>
        <translation>Éléments</translation>
    </message>
    <message>
        <source>What is written for each element of the level, in this order.</source>
        <translation>Ce qui est écrit pour chaque élément du niveau, dans cet ordre.</translation>
    </message>
    <message>
        <source>What is written, by its number. An item with another number writes nothing.</source>
        <translation>Ce qui est écrit, par son numéro. Un élément qui a un autre numéro n&apos;écrit rien.</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Texte</translation>
    </message>
    <message>
        <source>Text that is written, by an item that writes a fixed text.</source>
        <translation>Texte écrit par un élément à texte fixe.</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Niveau</translation>
    </message>
    <message>
        <source>Name of the level that is written, by an item that writes a sub-level.</source>
        <translation>Nom du niveau écrit par un élément de sous-niveau.</translation>
    </message>
    <message>
        <source>Prefix of keys</source>
        <translation>Préfixe des clés</translation>
    </message>
    <message>
        <source>Text that is removed from the start of the keys.</source>
        <translation>Texte retiré au début des clés.</translation>
    </message>
    <message>
        <source>Columns that are written, by an item that writes some columns.</source>
        <translation>Colonnes écrites par un élément à colonnes listées.</translation>
    </message>
    <message>
        <source>Read and Parse a multi-level JSON file</source>
        <translation>Lire et analyser un fichier JSON à plusieurs niveaux</translation>
    </message>
    <message>
        <source>JSON column</source>
        <translation>Colonne JSON</translation>
    </message>
    <message>
        <source>Input column that holds the JSON texts.</source>
        <translation>Colonne d&apos;entrée qui contient les textes JSON.</translation>
    </message>
    <message>
        <source>Read the JSON</source>
        <translation>Lire le JSON</translation>
    </message>
    <message>
        <source>Reads the file fileName, or (any value but 0) the texts of colJSON.</source>
        <translation>Lit le fichier fileName ou (pour toute valeur sauf 0) les textes de colJSON.</translation>
    </message>
    <message>
        <source>JSON or JSON Lines file to read, a pattern, or a member of an archive (archive.zip@member).</source>
        <translation>Fichier JSON ou JSON Lines à lire, motif, ou membre d&apos;une archive (archive.zip@membre).</translation>
    </message>
    <message>
        <source>Each input row holds one complete JSON document</source>
        <translation>Chaque ligne d&apos;entrée contient un document JSON complet</translation>
    </message>
    <message>
        <source>Each row is one document. Off: the rows are one stream of documents, and a document may continue in the next row.</source>
        <translation>Chaque ligne est un document. Sinon, les lignes forment une suite de documents, et un document peut continuer dans la ligne suivante.</translation>
    </message>
    <message>
        <source>Read tags to extract from pin 1</source>
        <translation>Lire les balises à extraire sur l&apos;entrée 1</translation>
    </message>
    <message>
        <source>Reads the items from the rows of input pin 1: from the columns path, name, tagName and level, or else the path from the first and the name from the second column.</source>
        <translation>Lit les éléments dans les lignes de l&apos;entrée 1&#xa0;: dans les colonnes path, name, tagName et level, ou bien le chemin dans la première colonne et le nom dans la deuxième.</translation>
    </message>
    <message>
        <source>Accept malformed numbers</source>
        <translation>Accepter les nombres mal formés</translation>
    </message>
    <message>
        <source>Accepts malformed numbers. Off: a value such as 12abc is a structure error.</source>
        <translation>Accepte les nombres mal formés. Sinon, une valeur telle que 12abc est une erreur de structure.</translation>
    </message>
    <message>
        <source>Continue after structure errors</source>
        <translation>Continuer après les erreurs de structure</translation>
    </message>
    <message>
        <source>Reports structure errors as warnings and continues.</source>
        <translation>Signale les erreurs de structure comme des avertissements et continue.</translation>
    </message>
    <message>
        <source>Always keep the root</source>
        <translation>Toujours garder la racine</translation>
    </message>
    <message>
        <source>Keeps the root of every record, so that paths start at the document. Default off in graphs saved before version 3.92.</source>
        <translation>Garde la racine de chaque enregistrement&#xa0;: les chemins commencent au document. Désactivé par défaut dans les graphes enregistrés avant la version 3.92.</translation>
    </message>
    <message>
        <source>Create a multi-level JSON file</source>
        <translation>Créer un fichier JSON à plusieurs niveaux</translation>
    </message>
    <message>
        <source>JSON file to write, UTF-8.</source>
        <translation>Fichier JSON à écrire, en UTF-8.</translation>
    </message>
    <message>
        <source>write null</source>
        <translation>écrire null</translation>
    </message>
    <message>
        <source>write &quot;&quot;</source>
        <translation>écrire &quot;&quot;</translation>
    </message>
    <message>
        <source>The texts true and false are booleans</source>
        <translation>Les textes true et false sont des booléens</translation>
    </message>
    <message>
        <source>Writes the texts true, True, false and False as booleans. Default off in graphs saved before version 2.79.</source>
        <translation>Écrit les textes true, True, false et False comme des booléens. Désactivé par défaut dans les graphes enregistrés avant la version 2.79.</translation>
    </message>
    <message>
        <source>Line feeds become \n</source>
        <translation>Les sauts de ligne deviennent \n</translation>
    </message>
    <message>
        <source>Writes line feeds in texts as \n. Off: they stay unchanged, which strict parsers reject.</source>
        <translation>Écrit les sauts de ligne des textes comme \n. Sinon, ils restent inchangés, ce que les analyseurs stricts refusent.</translation>
    </message>
    <message>
        <source>Control characters become escapes</source>
        <translation>Échapper les caractères de contrôle</translation>
    </message>
    <message>
        <source>Writes all control characters in texts and names as escapes, so that the file is valid JSON for all cells. Off: they stay unchanged.</source>
        <translation>Écrit tous les caractères de contrôle des textes et des noms sous forme échappée, pour que le fichier soit du JSON valide pour toutes les cellules. Sinon, ils restent inchangés.</translation>
    </message>
    <message>
        <source>One file per value of the split column</source>
        <translation>Un fichier par valeur de la colonne de division</translation>
    </message>
    <message>
        <source>Writes one file per value of splitCol; the value is put into the file name before the extension.</source>
        <translation>Écrit un fichier par valeur de splitCol&#xa0;; la valeur est placée dans le nom du fichier avant l&apos;extension.</translation>
    </message>
    <message>
        <source>Put the value at each * of the file name</source>
        <translation>Placer la valeur à chaque * du nom du fichier</translation>
    </message>
    <message>
        <source>The value replaces each * in the file name. Without a * it is put before the extension, or becomes the extension of a name that has none.</source>
        <translation>La valeur remplace chaque * du nom du fichier. Sans *, elle est placée avant l&apos;extension, ou devient l&apos;extension d&apos;un nom qui n&apos;en a pas.</translation>
    </message>
    <message>
        <source>Split column</source>
        <translation>Colonne de division</translation>
    </message>
    <message>
        <source>Column whose values split the table, which should be sorted on it.</source>
        <translation>Colonne dont les valeurs divisent la table, qui devrait être triée sur elle.</translation>
    </message>
    <message>
        <source>Read a DBase,Paradox,FoxPro database file</source>
        <translation>Lire un fichier de base de données DBase, Paradox ou FoxPro</translation>
    </message>
    <message>
        <source>Table to read, or a pattern such as *.dbf; all tables must have the columns of the first.</source>
        <translation>Table à lire, ou motif tel que *.dbf&#xa0;; toutes les tables doivent avoir les colonnes de la première.</translation>
    </message>
    <message>
        <source>Encoding of character and memo fields. Any other value keeps the bytes as they are.</source>
        <translation>Codage des champs de caractères et des mémos. Toute autre valeur garde les octets tels quels.</translation>
    </message>
    <message>
        <source>Latin 1 (Windows 1252)</source>
        <translation>Latin 1 (Windows 1252)</translation>
    </message>
    <message>
        <source>encoding of the system</source>
        <translation>codage du système</translation>
    </message>
    <message>
        <source>Read memo fields</source>
        <translation>Lire les champs mémo</translation>
    </message>
    <message>
        <source>Reads the texts of memo fields from the memo file in the same folder as the table.</source>
        <translation>Lit les textes des champs mémo dans le fichier mémo situé dans le dossier de la table.</translation>
    </message>
    <message>
        <source>load the full Memo/DBT/FPT file in memory for faster processing.</source>
        <translation>charger tout le fichier Memo/DBT/FPT en mémoire pour un traitement plus rapide.</translation>
    </message>
    <message>
        <source>Loads the whole memo file into memory. Off: it is read through a buffer.</source>
        <translation>Charge tout le fichier mémo en mémoire. Sinon, il est lu à travers un tampon.</translation>
    </message>
    <message>
        <source>dBase level 7 or above</source>
        <translation>dBase niveau 7 ou supérieur</translation>
    </message>
    <message>
        <source>Reads the tables with the longer header of dBase 7 and above. Tables whose field descriptors are valid in only one of the two forms are read in that form.</source>
        <translation>Lit les tables avec l&apos;en-tête plus long de dBase 7 et suivants. Les tables dont les descripteurs de champs ne sont valides que dans une des deux formes sont lues dans cette forme.</translation>
    </message>
    <message>
        <source>Read a parquet file</source>
        <translation>Lire un fichier parquet</translation>
    </message>
    <message>
        <source>64-bit integers become keys</source>
        <translation>Les entiers de 64 bits deviennent des clés</translation>
    </message>
    <message>
        <source>Reads 64-bit integers as keys, their low 32 bits. Off: as decimal numbers.</source>
        <translation>Lit les entiers de 64 bits comme des clés, leurs 32 bits de poids faible. Sinon, comme des nombres décimaux.</translation>
    </message>
    <message>
        <source>Which columns are read.</source>
        <translation>Colonnes à lire.</translation>
    </message>
    <message>
        <source>all columns</source>
        <translation>toutes les colonnes</translation>
    </message>
    <message>
        <source>the columns in the list</source>
        <translation>les colonnes de la liste</translation>
    </message>
    <message>
        <source>the columns named on input pin 1</source>
        <translation>les colonnes nommées sur l&apos;entrée 1</translation>
    </message>
    <message>
        <source>Read newer encodings and codecs</source>
        <translation>Lire les codages et codecs plus récents</translation>
    </message>
    <message>
        <source>Also reads RLE_DICTIONARY, DELTA and BYTE_STREAM_SPLIT pages and the codecs ZSTD, LZ4_RAW and Brotli. Off: such files are rejected.</source>
        <translation>Lit aussi les pages RLE_DICTIONARY, DELTA et BYTE_STREAM_SPLIT et les codecs ZSTD, LZ4_RAW et Brotli. Sinon, ces fichiers sont refusés.</translation>
    </message>
    <message>
        <source>Convert values to what they represent</source>
        <translation>Convertir les valeurs en ce qu&apos;elles représentent</translation>
    </message>
    <message>
        <source>Reads dates and times as ISO 8601 text, and decimals, large and unsigned integers exactly. Off: reads values as they are stored.</source>
        <translation>Lit les dates et les heures comme des textes ISO 8601, et exactement les décimaux, les grands entiers et les entiers non signés. Sinon, lit les valeurs telles qu&apos;elles sont enregistrées.</translation>
    </message>
    <message>
        <source>Check the checksums of pages</source>
        <translation>Vérifier les sommes de contrôle des pages</translation>
    </message>
    <message>
        <source>Rejects a page whose checksum differs from the one in its header. Off: checksums are ignored.</source>
        <translation>Refuse une page dont la somme de contrôle diffère de celle de son en-tête. Sinon, les sommes sont ignorées.</translation>
    </message>
    <message>
        <source>Skip columns that cannot be read</source>
        <translation>Ignorer les colonnes illisibles</translation>
    </message>
    <message>
        <source>Skips nested columns and others that cannot be read, with a warning. Off: such files are rejected.</source>
        <translation>Ignore les colonnes imbriquées et les autres colonnes illisibles, avec un avertissement. Sinon, ces fichiers sont refusés.</translation>
    </message>
    <message>
        <source>Accept files without rows</source>
        <translation>Accepter les fichiers sans lignes</translation>
    </message>
    <message>
        <source>Reads a file without rows as an empty table. Off: it is an error.</source>
        <translation>Lit un fichier sans lignes comme une table vide. Sinon, c&apos;est une erreur.</translation>
    </message>
    <message>
        <source>Parquet file to read, or a pattern such as *.parquet.</source>
        <translation>Fichier parquet à lire, ou motif tel que *.parquet.</translation>
    </message>
    <message>
        <source>Columns that are read when columnSelection is 1.</source>
        <translation>Colonnes lues quand columnSelection vaut 1.</translation>
    </message>
    <message>
        <source>Write a parquet file</source>
        <translation>Écrire un fichier parquet</translation>
    </message>
    <message>
        <source>Page size</source>
        <translation>Taille des pages</translation>
    </message>
    <message>
        <source>Size of uncompressed pages.</source>
        <translation>Taille des pages non compressées.</translation>
    </message>
    <message>
        <source>Row group size</source>
        <translation>Taille des groupes de lignes</translation>
    </message>
    <message>
        <source>Size of a row group.</source>
        <translation>Taille d&apos;un groupe de lignes.</translation>
    </message>
    <message>
        <source>Storage of keys</source>
        <translation>Stockage des clés</translation>
    </message>
    <message>
        <source>Physical type of the columns of whole numbers.</source>
        <translation>Type physique des colonnes de nombres entiers.</translation>
    </message>
    <message>
        <source>32-bit integer marked as unsigned</source>
        <translation>entier de 32 bits, non signé</translation>
    </message>
    <message>
        <source>32-bit integer</source>
        <translation>entier de 32 bits</translation>
    </message>
    <message>
        <source>64-bit integer</source>
        <translation>entier de 64 bits</translation>
    </message>
    <message>
        <source>Split</source>
        <translation>Division</translation>
    </message>
    <message>
        <source>Whether the table is written to one file or several.</source>
        <translation>Indique si la table est écrite dans un ou plusieurs fichiers.</translation>
    </message>
    <message>
        <source>one file</source>
        <translation>un fichier</translation>
    </message>
    <message>
        <source>one file per value of the split column</source>
        <translation>un fichier par valeur de la colonne de division</translation>
    </message>
    <message>
        <source>a new file after every segment</source>
        <translation>un nouveau fichier après chaque segment</translation>
    </message>
    <message>
        <source>Segment size</source>
        <translation>Taille des segments</translation>
    </message>
    <message>
        <source>Size after which a split table continues in a new file.</source>
        <translation>Taille après laquelle une table divisée continue dans un nouveau fichier.</translation>
    </message>
    <message>
        <source>Column whose value selects the file. Best when the table is sorted on it.</source>
        <translation>Colonne dont la valeur choisit le fichier. De préférence, la table est triée sur elle.</translation>
    </message>
    <message>
        <source>Compression</source>
        <translation>Compression</translation>
    </message>
    <message>
        <source>Codec of the pages.</source>
        <translation>Codec des pages.</translation>
    </message>
    <message>
        <source>Snappy</source>
        <translation>Snappy</translation>
    </message>
    <message>
        <source>none</source>
        <translation>aucune</translation>
    </message>
    <message>
        <source>gzip</source>
        <translation>gzip</translation>
    </message>
    <message>
        <source>Zstandard</source>
        <translation>Zstandard</translation>
    </message>
    <message>
        <source>LZ4</source>
        <translation>LZ4</translation>
    </message>
    <message>
        <source>Brotli</source>
        <translation>Brotli</translation>
    </message>
    <message>
        <source>Fast; all readers know it.</source>
        <translation>Rapide&#xa0;; connu de tous les lecteurs.</translation>
    </message>
    <message>
        <source>Largest files; no time for compression.</source>
        <translation>Fichiers les plus gros&#xa0;; aucun temps de compression.</translation>
    </message>
    <message>
        <source>Small files, slow; most readers know it.</source>
        <translation>Petits fichiers, lent&#xa0;; connu de la plupart des lecteurs.</translation>
    </message>
    <message>
        <source>Small files, fast; needs a recent reader.</source>
        <translation>Petits fichiers, rapide&#xa0;; exige un lecteur récent.</translation>
    </message>
    <message>
        <source>Fastest; needs a recent reader.</source>
        <translation>Le plus rapide&#xa0;; exige un lecteur récent.</translation>
    </message>
    <message>
        <source>Smallest files, slowest; few readers know it.</source>
        <translation>Fichiers les plus petits, le plus lent&#xa0;; connu de peu de lecteurs.</translation>
    </message>
    <message>
        <source>Dictionary pages</source>
        <translation>Pages de dictionnaire</translation>
    </message>
    <message>
        <source>Stores repeated values once per row group, which makes smaller files.</source>
        <translation>Enregistre les valeurs répétées une fois par groupe de lignes, ce qui réduit les fichiers.</translation>
    </message>
    <message>
        <source>Statistics</source>
        <translation>Statistiques</translation>
    </message>
    <message>
        <source>Writes null counts, smallest and largest values, for readers that skip row groups.</source>
        <translation>Écrit le nombre de valeurs nulles et les valeurs extrêmes, pour les lecteurs qui sautent des groupes de lignes.</translation>
    </message>
    <message>
        <source>Parquet file to write.</source>
        <translation>Fichier parquet à écrire.</translation>
    </message>
    <message>
        <source>Create a .sas7bdat file</source>
        <translation>Créer un fichier .sas7bdat</translation>
    </message>
    <message>
        <source>Data set (.sas7bdat) to write.</source>
        <translation>Jeu de données (.sas7bdat) à écrire.</translation>
    </message>
    <message>
        <source>Names of the variables</source>
        <translation>Noms des variables</translation>
    </message>
    <message>
        <source>A name in the data set has at most 32 bytes of UTF-8. Without the option VALIDVARNAME=ANY, SAS accepts only letters of ASCII, digits and &apos;_&apos; in it.</source>
        <translation>Un nom du jeu de données a au plus 32 octets en UTF-8. Sans l&apos;option VALIDVARNAME=ANY, SAS n&apos;y accepte que des lettres ASCII, des chiffres et «&#xa0;_&#xa0;».</translation>
    </message>
    <message>
        <source>Use the same Column Names as in Corvanta (possibly truncated)</source>
        <translation>Garder les noms des colonnes (tronqués au besoin)</translation>
    </message>
    <message>
        <source>Use the same Column Names as in Corvanta (abort if truncation)</source>
        <translation>Garder les noms des colonnes (abandonner s&apos;il faut tronquer)</translation>
    </message>
    <message>
        <source>Column Names are C1,C2,.. and Column Labels are Corvanta Column Names</source>
        <translation>Nommer les colonnes C1,C2,..&#xa0;; leurs noms deviennent les libellés</translation>
    </message>
    <message>
        <source>Column Names are valid SAS names and Column Labels are Corvanta Column Names</source>
        <translation>Créer des noms SAS valides&#xa0;; les noms des colonnes deviennent les libellés</translation>
    </message>
    <message>
        <source>A text wider than its column</source>
        <translation>Texte plus large que sa colonne</translation>
    </message>
    <message>
        <source>What happens to a text that does not fit.</source>
        <translation>Traitement d&apos;un texte trop long.</translation>
    </message>
    <message>
        <source>truncate it, with a warning</source>
        <translation>le tronquer, avec un avertissement</translation>
    </message>
    <message>
        <source>abort</source>
        <translation>abandonner</translation>
    </message>
    <message>
        <source>Automatic width: factor</source>
        <translation>Largeur automatique&#xa0;: facteur</translation>
    </message>
    <message>
        <source>Measured widths are the longest text times this factor.</source>
        <translation>Les largeurs mesurées sont celles du plus long texte, multipliées par ce facteur.</translation>
    </message>
    <message>
        <source>Automatic width: extra bytes</source>
        <translation>Largeur automatique&#xa0;: octets ajoutés</translation>
    </message>
    <message>
        <source>Bytes added to measured widths.</source>
        <translation>Octets ajoutés aux largeurs mesurées.</translation>
    </message>
    <message>
        <source>Writes every column. Off: only the columns of ColWrite.</source>
        <translation>Écrit toutes les colonnes. Sinon, seulement les colonnes de ColWrite.</translation>
    </message>
    <message>
        <source>Measure the widths of text columns</source>
        <translation>Mesurer les largeurs des colonnes de textes</translation>
    </message>
    <message>
        <source>Text columns without a declared width (StringColDef) become as wide as their longest text. Off: every text column needs a declared width.</source>
        <translation>Les colonnes de textes sans largeur déclarée (StringColDef) ont la largeur de leur plus long texte. Sinon, chaque colonne de textes exige une largeur déclarée.</translation>
    </message>
    <message>
        <source>Widths of text columns</source>
        <translation>Largeurs des colonnes de textes</translation>
    </message>
    <message>
        <source>One CD (n, l, ol) per text column, with its name and its width in bytes.</source>
        <translation>Un CD (n, l, ol) par colonne de textes, avec son nom et sa largeur en octets.</translation>
    </message>
    <message>
        <source>Name of the text column.</source>
        <translation>Nom de la colonne de textes.</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Largeur</translation>
    </message>
    <message>
        <source>Longest text</source>
        <translation>Plus long texte</translation>
    </message>
    <message>
        <source>Bytes of the longest text that was found when the width was measured; 0: unknown.</source>
        <translation>Octets du plus long texte trouvé lors de la mesure de la largeur&#xa0;; 0&#xa0;: inconnu.</translation>
    </message>
    <message>
        <source>Labels and formats of columns</source>
        <translation>Libellés et formats des colonnes</translation>
    </message>
    <message>
        <source>Name of the column.</source>
        <translation>Nom de la colonne.</translation>
    </message>
    <message>
        <source>Label</source>
        <translation>Libellé</translation>
    </message>
    <message>
        <source>Label of the variable.</source>
        <translation>Libellé de la variable.</translation>
    </message>
    <message>
        <source>Format of SAS that shows the values, for example DATE9. or 8.2. With a format of dates or times, ISO 8601 texts become numbers.</source>
        <translation>Format SAS qui affiche les valeurs, par exemple DATE9. ou 8.2. Avec un format de date ou d&apos;heure, les textes ISO 8601 deviennent des nombres.</translation>
    </message>
    <message>
        <source>Width of numbers</source>
        <translation>Largeur des nombres</translation>
    </message>
    <message>
        <source>Create a SAS Export .xpt file</source>
        <translation>Créer un fichier d&apos;export SAS .xpt</translation>
    </message>
    <message>
        <source>Transport file (.xpt) to write.</source>
        <translation>Fichier de transport (.xpt) à écrire.</translation>
    </message>
    <message>
        <source>Transport version 8</source>
        <translation>Version 8 du format de transport</translation>
    </message>
    <message>
        <source>Writes version 8: names of 32 bytes, labels of 256, texts of 32767. Off: version 5, which more programs read: names of 8 bytes, labels of 40, texts of 200.</source>
        <translation>Écrit la version 8&#xa0;: noms de 32 octets, libellés de 256, textes de 32767. Sinon, la version 5, que plus de programmes lisent&#xa0;: noms de 8 octets, libellés de 40, textes de 200.</translation>
    </message>
    <message>
        <source>Encoding of texts</source>
        <translation>Codage des textes</translation>
    </message>
    <message>
        <source>UTF-8, or the name of an encoding with one byte per character, for example WINDOWS-1252. Characters that it does not have become &apos;?&apos;.</source>
        <translation>UTF-8, ou le nom d&apos;un codage à un octet par caractère, par exemple WINDOWS-1252. Les caractères qu&apos;il n&apos;a pas deviennent «&#xa0;?&#xa0;».</translation>
    </message>
    <message>
        <source>Bytes of each number, 3 to 8. Numbers lose digits if it is below 8, and integers above 2097152 (at 4 bytes) are no longer exact.</source>
        <translation>Octets de chaque nombre, de 3 à 8. En dessous de 8, les nombres perdent des chiffres et les entiers supérieurs à 2097152 (avec 4 octets) ne sont plus exacts.</translation>
    </message>
    <message>
        <source>Write some text or image into a .docx or .pptx document</source>
        <translation>Écrire du texte ou une image dans un document .docx ou .pptx</translation>
    </message>
    <message>
        <source>Column of the output documents</source>
        <translation>Colonne des documents à écrire</translation>
    </message>
    <message>
        <source>Input column with the names of the documents to write.</source>
        <translation>Colonne d&apos;entrée avec les noms des documents à écrire.</translation>
    </message>
    <message>
        <source>Column of the templates</source>
        <translation>Colonne des modèles</translation>
    </message>
    <message>
        <source>Input column with the names of the templates (.docx or .pptx).</source>
        <translation>Colonne d&apos;entrée avec les noms des modèles (.docx ou .pptx).</translation>
    </message>
    <message>
        <source>Line ends become line breaks</source>
        <translation>Les fins de ligne deviennent des sauts de ligne</translation>
    </message>
    <message>
        <source>Line ends in texts become line breaks in Word documents.</source>
        <translation>Les fins de ligne des textes deviennent des sauts de ligne dans les documents Word.</translation>
    </message>
    <message>
        <source>\n becomes a line break</source>
        <translation>\n devient un saut de ligne</translation>
    </message>
    <message>
        <source>The two characters backslash and n in a text become a line break.</source>
        <translation>Les deux caractères barre oblique inverse et n d&apos;un texte deviennent un saut de ligne.</translation>
    </message>
    <message>
        <source>Store images in the document</source>
        <translation>Enregistrer les images dans le document</translation>
    </message>
    <message>
        <source>Stores images in the document. Off: it links to the image files.</source>
        <translation>Enregistre les images dans le document. Sinon, il contient des liens vers les fichiers.</translation>
    </message>
    <message>
        <source>Join divided markers</source>
        <translation>Réunir les marques divisées</translation>
    </message>
    <message>
        <source>Finds markers that a word processor has divided into several runs, and markers with &apos;&amp;&apos; or &apos;&lt;&apos;.</source>
        <translation>Trouve les marques qu&apos;un traitement de texte a divisées en plusieurs segments, et les marques avec «&#xa0;&amp;&#xa0;» ou «&#xa0;&lt;&#xa0;».</translation>
    </message>
    <message>
        <source>Markers in all parts</source>
        <translation>Marques dans toutes les parties</translation>
    </message>
    <message>
        <source>Also replaces markers in headers, footers, footnotes, endnotes, comments, charts, diagrams, notes of slides, slide layouts and slide masters.</source>
        <translation>Remplace aussi les marques des en-têtes, pieds de page, notes, commentaires, graphiques, diagrammes, notes de diapositives, dispositions et masques de diapositives.</translation>
    </message>
    <message>
        <source>Keep the ratio of images</source>
        <translation>Garder les proportions des images</translation>
    </message>
    <message>
        <source>Fits each image into the box of its placeholder and keeps the image&apos;s ratio of width to height.</source>
        <translation>Adapte chaque image au cadre de son emplacement en gardant ses proportions.</translation>
    </message>
    <message>
        <source>Markup as in the standard</source>
        <translation>Balisage conforme à la norme</translation>
    </message>
    <message>
        <source>Ends the text element at line breaks in Word documents. Off: the break is inside it, where some programs do not show it.</source>
        <translation>Termine l&apos;élément de texte aux sauts de ligne dans les documents Word. Sinon, le saut est à l&apos;intérieur, où certains programmes ne l&apos;affichent pas.</translation>
    </message>
    <message>
        <source>Text columns</source>
        <translation>Colonnes de textes</translation>
    </message>
    <message>
        <source>Columns whose texts replace their markers, %NAME%.</source>
        <translation>Colonnes dont les textes remplacent leurs marques, %NAME%.</translation>
    </message>
    <message>
        <source>Image columns</source>
        <translation>Colonnes d&apos;images</translation>
    </message>
    <message>
        <source>Columns with names of image files, for the pictures whose targets contain %NAME%.</source>
        <translation>Colonnes avec des noms de fichiers d&apos;images, pour les images dont la cible contient %NAME%.</translation>
    </message>
    <message>
        <source>Write formatted Table(s) into a MS-Word document</source>
        <translation>Écrire des tableaux mis en forme dans un document MS-Word</translation>
    </message>
    <message>
        <source>Word document with the markers.</source>
        <translation>Document Word avec les marques.</translation>
    </message>
    <message>
        <source>Word document to write.</source>
        <translation>Document Word à écrire.</translation>
    </message>
    <message>
        <source>Line ends in cells become line breaks.</source>
        <translation>Les fins de ligne des cellules deviennent des sauts de ligne.</translation>
    </message>
    <message>
        <source>The two characters backslash and n in a cell become a line break.</source>
        <translation>Les deux caractères barre oblique inverse et n d&apos;une cellule deviennent un saut de ligne.</translation>
    </message>
    <message>
        <source>Finds markers that a word processor has divided into several runs.</source>
        <translation>Trouve les marques qu&apos;un traitement de texte a divisées en plusieurs segments.</translation>
    </message>
    <message>
        <source>Puts tables between paragraphs and line breaks between texts. Off: a table in a formatted paragraph is inside its text, where some programs do not show it.</source>
        <translation>Place les tableaux entre les paragraphes et les sauts de ligne entre les textes. Sinon, un tableau dans un paragraphe mis en forme est à l&apos;intérieur de son texte, où certains programmes ne l&apos;affichent pas.</translation>
    </message>
    <message>
        <source>One v (markerName, colWidths in twentieths of a point, styleID, includeHeaders) per input pin.</source>
        <translation>Un v (markerName, colWidths en vingtièmes de point, styleID, includeHeaders) par entrée.</translation>
    </message>
    <message>
        <source>Marker</source>
        <translation>Marque</translation>
    </message>
    <message>
        <source>Name of the marker in the template, without its percent signs.</source>
        <translation>Nom de la marque dans le modèle, sans les signes de pourcentage.</translation>
    </message>
    <message>
        <source>Column widths</source>
        <translation>Largeurs des colonnes</translation>
    </message>
    <message>
        <source>Comma-separated widths of the columns, in twentieths of a point.</source>
        <translation>Largeurs des colonnes, séparées par des virgules, en vingtièmes de point.</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>Style</translation>
    </message>
    <message>
        <source>Identifier of the Word table style.</source>
        <translation>Identifiant du style de tableau Word.</translation>
    </message>
    <message>
        <source>Appended rows look like the last row</source>
        <translation>Les lignes ajoutées ressemblent à la dernière</translation>
    </message>
    <message>
        <source>Appended rows get the cell formats of the last row of the sheet, if it is not its only row. Date columns keep their own format where that of the row shows no dates.</source>
        <translation>Les lignes ajoutées reçoivent les formats de cellule de la dernière ligne de la feuille, si ce n’est pas la seule. Les colonnes de dates gardent leur propre format si celui de cette ligne n’affiche pas de dates.</translation>
    </message>
    <message>
        <source>Iterate on all the subtags located at:</source>
        <translation>Parcourir tous les sous-éléments situés dans&#xa0;:</translation>
    </message>
    <message>
        <source>A simple text</source>
        <translation>Un texte simple</translation>
    </message>
    <message>
        <source>All columns stored inside different XML Tag Attributes</source>
        <translation>Toutes les colonnes dans des attributs de balise XML</translation>
    </message>
    <message>
        <source>Some user-selected columns stored inside different XML Tag Attributes</source>
        <translation>Certaines colonnes choisies dans des attributs de balise XML</translation>
    </message>
    <message>
        <source>All columns stored inside XML subtags</source>
        <translation>Toutes les colonnes dans des sous-éléments XML</translation>
    </message>
    <message>
        <source>Some user-selected columns stored inside XML subtags</source>
        <translation>Certaines colonnes choisies dans des sous-éléments XML</translation>
    </message>
    <message>
        <source>One column to be placed inside quotes</source>
        <translation>Une colonne à placer entre guillemets</translation>
    </message>
    <message>
        <source>One column to be placed inside a tag</source>
        <translation>Une colonne à placer dans une balise</translation>
    </message>
    <message>
        <source>One pre-formated column &quot;as-is&quot;</source>
        <translation>Une colonne préparée, telle quelle</translation>
    </message>
    <message>
        <source>An XML-writer sub-level</source>
        <translation>Un sous-niveau</translation>
    </message>
    <message>
        <source>Writes the text as it is.</source>
        <translation>Écrit le texte tel quel.</translation>
    </message>
    <message>
        <source>Writes name=&quot;value&quot; for every column of the input.</source>
        <translation>Écrit nom=&quot;valeur&quot; pour chaque colonne de l&apos;entrée.</translation>
    </message>
    <message>
        <source>Writes name=&quot;value&quot; for the chosen columns.</source>
        <translation>Écrit nom=&quot;valeur&quot; pour les colonnes choisies.</translation>
    </message>
    <message>
        <source>Writes an element with the value for every column of the input.</source>
        <translation>Écrit un élément avec la valeur pour chaque colonne de l&apos;entrée.</translation>
    </message>
    <message>
        <source>Writes an element with the value for the chosen columns.</source>
        <translation>Écrit un élément avec la valeur pour les colonnes choisies.</translation>
    </message>
    <message>
        <source>Writes the value of the first chosen column between double quotes.</source>
        <translation>Écrit la valeur de la première colonne choisie entre guillemets doubles.</translation>
    </message>
    <message>
        <source>Writes the value of the first chosen column as the text of an element.</source>
        <translation>Écrit la valeur de la première colonne choisie comme texte d&apos;un élément.</translation>
    </message>
    <message>
        <source>Writes the text of the first chosen column without escapes.</source>
        <translation>Écrit le texte de la première colonne choisie sans échappement.</translation>
    </message>
    <message>
        <source>Writes the elements of another level.</source>
        <translation>Écrit les éléments d&apos;un autre niveau.</translation>
    </message>
    <message>
        <source>A dictionary containing all columns</source>
        <translation>Un dictionnaire de toutes les colonnes</translation>
    </message>
    <message>
        <source>A dictionary containing some user-selected columns</source>
        <translation>Un dictionnaire de certaines colonnes choisies</translation>
    </message>
    <message>
        <source>An array containing all columns</source>
        <translation>Un tableau de toutes les colonnes</translation>
    </message>
    <message>
        <source>An array containing some user-selected columns</source>
        <translation>Un tableau de certaines colonnes choisies</translation>
    </message>
    <message>
        <source>An array containing some sub-level</source>
        <translation>Un tableau d&apos;un sous-niveau</translation>
    </message>
    <message>
        <source>Adds a comma if the previous dictionary is non empty</source>
        <translation>Ajoute une virgule si le dictionnaire précédent n&apos;est pas vide</translation>
    </message>
    <message>
        <source>Writes &quot;name&quot;:value for every column of the input, without braces.</source>
        <translation>Écrit &quot;nom&quot;:valeur pour chaque colonne de l&apos;entrée, sans accolades.</translation>
    </message>
    <message>
        <source>Writes &quot;name&quot;:value for the chosen columns, without braces.</source>
        <translation>Écrit &quot;nom&quot;:valeur pour les colonnes choisies, sans accolades.</translation>
    </message>
    <message>
        <source>Writes the values of all columns with commas between them, without brackets.</source>
        <translation>Écrit les valeurs de toutes les colonnes, séparées par des virgules, sans crochets.</translation>
    </message>
    <message>
        <source>Writes the values of the chosen columns with commas between them, without brackets.</source>
        <translation>Écrit les valeurs des colonnes choisies, séparées par des virgules, sans crochets.</translation>
    </message>
    <message>
        <source>Writes the elements of another level, without brackets.</source>
        <translation>Écrit les éléments d&apos;un autre niveau, sans crochets.</translation>
    </message>
    <message>
        <source>Writes a comma when the item before it, a dictionary, has written something.</source>
        <translation>Écrit une virgule si l&apos;élément précédent, un dictionnaire, a écrit quelque chose.</translation>
    </message>
    <message>
        <source>Writes the text of the first chosen column without quotes and escapes.</source>
        <translation>Écrit le texte de la première colonne choisie, sans guillemets ni échappement.</translation>
    </message>
    <message>
        <source>Read tables with currency, objects and pictures</source>
        <translation>Lire les tables avec monnaie, objets et images</translation>
    </message>
    <message>
        <source>Dates in ISO form, true and false</source>
        <translation>Dates au format ISO, true et false</translation>
    </message>
    <message>
        <source>Reads dates as 2026-01-31, dates with times as 2026-01-31T04:30:05, and logical values as the texts true and false. Off: 20260131, 20260131 04:30:05, and the keys 1 and 0.</source>
        <translation>Lit les dates sous la forme 2026-01-31, les dates avec heure sous la forme 2026-01-31T04:30:05, et les valeurs logiques comme les textes true et false. Désactivé : 20260131, 20260131 04:30:05, et les clés 1 et 0.</translation>
    </message>
    <message>
        <source>Width of the column, in bytes; 0: unknown.</source>
        <translation>Largeur de la colonne, en octets ; 0 : inconnue.</translation>
    </message>
    <message>
        <source>Reads a text file with separators</source>
        <translation>Lit un fichier texte avec séparateurs</translation>
    </message>
    <message>
        <source>Separator</source>
        <translation>Séparateur</translation>
    </message>
    <message>
        <source>One ASCII character between two fields.</source>
        <translation>Un caractère ASCII entre deux champs.</translation>
    </message>
    <message>
        <source>Column types</source>
        <translation>Types des colonnes</translation>
    </message>
    <message>
        <source>One letter per column, separated by commas: K (whole number), F (decimal number), U (text). Columns without a letter are texts.</source>
        <translation>Une lettre par colonne, séparées par des virgules : K (nombre entier), F (nombre décimal), U (texte). Les colonnes sans lettre sont des textes.</translation>
    </message>
    <message>
        <source>First line holds the column names</source>
        <translation>La première ligne contient les noms des colonnes</translation>
    </message>
    <message>
        <source>Reads the column names from the first line. Off: columns are named C1, C2, ...</source>
        <translation>Lit les noms des colonnes dans la première ligne. Sinon : les colonnes se nomment C1, C2, ...</translation>
    </message>
    <message>
        <source>Sorted on</source>
        <translation>Trié sur</translation>
    </message>
    <message>
        <source>Names of the columns that the table is declared sorted on, separated by commas.</source>
        <translation>Noms des colonnes sur lesquelles la table est déclarée triée, séparés par des virgules.</translation>
    </message>
    <message>
        <source>Writes a text file with separators</source>
        <translation>Écrit un fichier texte avec séparateurs</translation>
    </message>
    <message>
        <source>Write the column names in the first line</source>
        <translation>Écrire les noms des colonnes dans la première ligne</translation>
    </message>
    <message>
        <source>Without it the file contains only rows.</source>
        <translation>Sinon, le fichier ne contient que des lignes de données.</translation>
    </message>
    <message>
        <source>Comment lines begin with</source>
        <translation>Début des lignes de commentaire</translation>
    </message>
    <message>
        <source>Date formats</source>
        <translation>Formats de date</translation>
    </message>
    <message>
        <source>Dates to convert to ISO 8601, one entry COLUMN=FORMAT each, such as day=dd.MM.yyyy; several columns are separated by commas.</source>
        <translation>Dates à convertir en ISO 8601, une entrée COLONNE=FORMAT pour chacune, par exemple jour=dd.MM.yyyy ; plusieurs colonnes sont séparées par des virgules.</translation>
    </message>
    <message>
        <source>Decimal point</source>
        <translation>Séparateur décimal</translation>
    </message>
    <message>
        <source>Fields without quotes that are missing values, separated by commas, such as NA,NULL. Empty fields always are.</source>
        <translation>Champs sans guillemets qui sont des valeurs manquantes, séparés par des virgules, par exemple NA,NULL. Les champs vides le sont toujours.</translation>
    </message>
    <message>
        <source>Line ends</source>
        <translation>Fins de ligne</translation>
    </message>
    <message>
        <source>Lines of another length</source>
        <translation>Lignes d’une autre longueur</translation>
    </message>
    <message>
        <source>Lines that begin with this text are not read. Empty: there are none.</source>
        <translation>Les lignes qui commencent par ce texte ne sont pas lues. Vide : il n’y en a pas.</translation>
    </message>
    <message>
        <source>Missing values</source>
        <translation>Valeurs manquantes</translation>
    </message>
    <message>
        <source>Name of the encoding, such as windows-1252. A ? replaces characters that it does not have.</source>
        <translation>Nom de l’encodage, par exemple windows-1252. Un ? remplace les caractères qu’il n’a pas.</translation>
    </message>
    <message>
        <source>Name of the encoding, such as windows-1252. auto: that of a byte-order mark, else UTF-8 or UTF-16 if the text is valid, else that of the system.</source>
        <translation>Nom de l’encodage, par exemple windows-1252. auto : celui d’une marque d’ordre des octets, sinon UTF-8 ou UTF-16 si le texte est valide, sinon celui du système.</translation>
    </message>
    <message>
        <source>Number of lines before the column names that are not read.</source>
        <translation>Nombre de lignes avant les noms des colonnes qui ne sont pas lues.</translation>
    </message>
    <message>
        <source>One ASCII character around fields that hold separators or line ends. Empty: fields have no quotes.</source>
        <translation>Un caractère ASCII autour des champs qui contiennent des séparateurs ou des fins de ligne. Vide : les champs n’ont pas de guillemets.</translation>
    </message>
    <message>
        <source>One ASCII character between two fields. auto: the comma, semicolon, tab or vertical bar that the first 64 KiB suggest.</source>
        <translation>Un caractère ASCII entre deux champs. auto : la virgule, le point-virgule, la tabulation ou la barre verticale que suggèrent les premiers 64 Kio.</translation>
    </message>
    <message>
        <source>Quote</source>
        <translation>Guillemet</translation>
    </message>
    <message>
        <source>Skip</source>
        <translation>Ignorer</translation>
    </message>
    <message>
        <source>Text file to read, or a pattern such as *.csv; all files must have the columns of the first. Also .gz, .Z and .rar files and members of .zip files (archive.zip@member).</source>
        <translation>Fichier texte à lire, ou un motif comme *.csv ; tous les fichiers doivent avoir les colonnes du premier. Aussi les fichiers .gz, .Z et .rar et les membres de fichiers .zip (archive.zip@membre).</translation>
    </message>
    <message>
        <source>Text file to write. A name that ends with .gz gives a compressed file.</source>
        <translation>Fichier texte à écrire. Un nom qui se termine par .gz donne un fichier compressé.</translation>
    </message>
    <message>
        <source>The character between the digits of decimal numbers (F): a point or a comma, for example.</source>
        <translation>Le caractère entre les chiffres des nombres décimaux (F) : un point ou une virgule, par exemple.</translation>
    </message>
    <message>
        <source>Lines with another number of fields. error: the run fails. fill: missing values fill short lines, and fields beyond the last column are dropped.</source>
        <translation>Lignes avec un autre nombre de champs. error : l’exécution échoue. fill : des valeurs manquantes complètent les lignes courtes, et les champs après la dernière colonne sont supprimés.</translation>
    </message>
    <message>
        <source>lf: line feed. crlf: carriage return and line feed.</source>
        <translation>lf : saut de ligne. crlf : retour chariot et saut de ligne.</translation>
    </message>
    <message>
        <source>Style of the header row</source>
        <translation>Style de la ligne d&apos;en-tête</translation>
    </message>
    <message>
        <source>Style of the header row in new sheets: bold, fill (a light blue background), or bold,fill for both, which is also what 1 means. Empty: no style.</source>
        <translation>Style de la ligne d&apos;en-tête des nouvelles feuilles&#xa0;: bold (gras), fill (fond bleu clair), ou bold,fill pour les deux, comme 1. Vide&#xa0;: aucun style.</translation>
    </message>
    <message>
        <source>Keep the header row visible</source>
        <translation>Garder la ligne d&apos;en-tête visible</translation>
    </message>
    <message>
        <source>The header row of new sheets stays visible when the sheet is scrolled.</source>
        <translation>La ligne d&apos;en-tête des nouvelles feuilles reste visible quand la feuille défile.</translation>
    </message>
    <message>
        <source>Filter buttons in the header row</source>
        <translation>Boutons de filtre dans la ligne d&apos;en-tête</translation>
    </message>
    <message>
        <source>The header cells of new sheets have buttons that sort and filter the rows.</source>
        <translation>Les cellules d&apos;en-tête des nouvelles feuilles ont des boutons qui trient et filtrent les lignes.</translation>
    </message>
    <message>
        <source>Widths of the columns in new sheets: auto, from the header and the first 1,000 rows, or numbers of digits in column order, separated by commas, for example 12,,30. A column without a number has the default width.</source>
        <translation>Largeurs des colonnes des nouvelles feuilles&#xa0;: auto, d&apos;après l&apos;en-tête et les 1&#xa0;000 premières lignes, ou nombres de chiffres dans l&apos;ordre des colonnes, séparés par des virgules, par exemple 12,,30. Une colonne sans nombre a la largeur par défaut.</translation>
    </message>
    <message>
        <source>After the last row of a sheet</source>
        <translation>Après la dernière ligne d&apos;une feuille</translation>
    </message>
    <message>
        <source>newSheet: rows after row 1,048,576 are written to further sheets. Empty: they are written to the same sheet, which spreadsheet programs cannot open.</source>
        <translation>newSheet&#xa0;: les lignes après la ligne 1&#xa0;048&#xa0;576 sont écrites dans d&apos;autres feuilles. Vide&#xa0;: elles sont écrites dans la même feuille, que les tableurs ne peuvent pas ouvrir.</translation>
    </message>
    <message>
        <source>Columns of dates with times</source>
        <translation>Colonnes de dates avec heures</translation>
    </message>
    <message>
        <source>Text columns of ISO 8601 dates, with or without times, that are written as dates. Other texts stay texts.</source>
        <translation>Colonnes de textes avec des dates ISO 8601, avec ou sans heures, écrites comme des dates. Les autres textes restent des textes.</translation>
    </message>
    <message>
        <source>Columns of times</source>
        <translation>Colonnes d&apos;heures</translation>
    </message>
    <message>
        <source>Text columns of times of day, such as 04:30:05, that are written as times. Other texts stay texts.</source>
        <translation>Colonnes de textes avec des heures, telles que 04:30:05, écrites comme des heures. Les autres textes restent des textes.</translation>
    </message>
    <message>
        <source>Boolean columns</source>
        <translation>Colonnes de booléens</translation>
    </message>
    <message>
        <source>Text columns whose texts true and false, in any letter case, are written as booleans. Other texts stay texts.</source>
        <translation>Colonnes de textes dont les textes true et false, en majuscules ou en minuscules, sont écrits comme des booléens. Les autres textes restent des textes.</translation>
    </message>
    <message>
        <source>Number formats of columns</source>
        <translation>Formats de nombre des colonnes</translation>
    </message>
    <message>
        <source>Number formats of columns in new sheets, each as COLUMN=FORMAT, for example price=#,##0.00 or day=dd/mm/yyyy.</source>
        <translation>Formats de nombre des colonnes des nouvelles feuilles, sous la forme COLUMN=FORMAT, par exemple price=#,##0.00 ou day=dd/mm/yyyy.</translation>
    </message>
    <message>
        <source>Read pages as browsers do</source>
        <translation>Lire les pages comme les navigateurs</translation>
    </message>
    <message>
        <source>Reads malformed pages as browsers do: adds missing end tags, decodes all entities of HTML, uses the encoding in &lt;meta&gt; and never fails.</source>
        <translation>Lit les pages mal formées comme les navigateurs&#xa0;: ajoute les balises de fin manquantes, décode toutes les entités HTML, utilise l&apos;encodage de &lt;meta&gt; et n&apos;échoue jamais.</translation>
    </message>
    <message>
        <source>Expand cells that span columns or rows</source>
        <translation>Répéter les cellules sur plusieurs colonnes ou lignes</translation>
    </message>
    <message>
        <source>Repeats the value of a cell with colspan or rowspan in each column and row of its table. Rows in thead and tfoot are rows of the table, and [n] is its column number n.</source>
        <translation>Répète la valeur d&apos;une cellule avec colspan ou rowspan dans chaque colonne et ligne de sa table. Les lignes de thead et de tfoot sont des lignes de la table, et [n] est sa colonne numéro n.</translation>
    </message>
    <message>
        <source>Reads the number of the occurrence, from 1, instead of the text; at most one column of a level.</source>
        <translation>Lit le numéro de l&apos;occurrence, à partir de 1, au lieu du texte&#xa0;; au plus une colonne par niveau.</translation>
    </message>
    <message>
        <source>Only rows with an occurrence</source>
        <translation>Seulement les lignes avec une occurrence</translation>
    </message>
    <message>
        <source>Of the last level: an outer occurrence without one of this level gives no row.</source>
        <translation>Au dernier niveau&#xa0;: une occurrence extérieure sans occurrence de ce niveau ne donne aucune ligne.</translation>
    </message>
    <message>
        <source>A null is a missing cell</source>
        <translation>Un null est une cellule manquante</translation>
    </message>
    <message>
        <source>Reads null as a missing cell. Off: as the text &quot;null&quot;.</source>
        <translation>Lit null comme une cellule manquante. Sinon, comme le texte «&#xa0;null&#xa0;».</translation>
    </message>
    <message>
        <source>Columns without quotes</source>
        <translation>Colonnes sans guillemets</translation>
    </message>
    <message>
        <source>Text columns whose numbers, and the words true and false in any letter case, are written without quotes. Texts that are not numbers of JSON, such as 007, keep them.</source>
        <translation>Colonnes de textes dont les nombres, et les mots true et false en majuscules ou en minuscules, sont écrits sans guillemets. Les textes qui ne sont pas des nombres JSON, tels que 007, les gardent.</translation>
    </message>
    <message>
        <source>Columns of JSON texts</source>
        <translation>Colonnes de textes JSON</translation>
    </message>
    <message>
        <source>Text columns that hold values of JSON, such as those that readJSON reads with the type J. They are written unchanged, without a check.</source>
        <translation>Colonnes de textes qui contiennent des valeurs JSON, comme celles que readJSON lit avec le type J. Elles sont écrites telles quelles, sans contrôle.</translation>
    </message>
    <message>
        <source>One letter per column, separated by commas: K (whole number), F (decimal number), U (text), J (text that is a value of JSON: with quotes and escapes if it is a text in the file). Columns without a letter are texts.</source>
        <translation>Une lettre par colonne, séparées par des virgules&#xa0;: K (nombre entier), F (nombre décimal), U (texte), J (texte qui est une valeur JSON&#xa0;: avec guillemets et échappements s&apos;il est un texte dans le fichier). Les colonnes sans lettre sont des textes.</translation>
    </message>
    <message>
        <source>One letter per column, separated by commas: K (whole number), F (decimal number), U (text). Only columns of texts and digits change; those without a letter are texts.</source>
        <translation>Une lettre par colonne, séparées par des virgules&#xa0;: K (nombre entier), F (nombre décimal), U (texte). Seules les colonnes de textes et de chiffres changent&#xa0;; celles sans lettre sont des textes.</translation>
    </message>
    <message>
        <source>Booleans become true and false</source>
        <translation>Les booléens deviennent true et false</translation>
    </message>
    <message>
        <source>Reads booleans as the texts true and false. Off: as 1 and 0.</source>
        <translation>Lit les booléens comme les textes true et false. Sinon, comme 1 et 0.</translation>
    </message>
    <message>
        <source>Booleans, integers, dates and times</source>
        <translation>Booléens, entiers, dates et heures</translation>
    </message>
    <message>
        <source>Stores the columns of the lists ToBoolean, ToInteger, ToDate, ToDateTime and ToTime as such. Off: as texts and decimal numbers.</source>
        <translation>Enregistre comme telles les colonnes des listes ToBoolean, ToInteger, ToDate, ToDateTime et ToTime. Sinon, comme des textes et des nombres décimaux.</translation>
    </message>
    <message>
        <source>Columns stored as BOOLEAN: true and false in any letter case, or 1 and 0. Any other value is an error.</source>
        <translation>Colonnes enregistrées en BOOLEAN&#xa0;: true et false en majuscules ou en minuscules, ou 1 et 0. Toute autre valeur est une erreur.</translation>
    </message>
    <message>
        <source>Integer columns</source>
        <translation>Colonnes d&apos;entiers</translation>
    </message>
    <message>
        <source>Columns stored as INT64: whole numbers, or texts of them. Any other value is an error.</source>
        <translation>Colonnes enregistrées en INT64&#xa0;: nombres entiers, ou leurs textes. Toute autre valeur est une erreur.</translation>
    </message>
    <message>
        <source>Text columns stored as DATE, such as 2026-01-31. Any other text is an error.</source>
        <translation>Colonnes de textes enregistrées en DATE, tels que 2026-01-31. Tout autre texte est une erreur.</translation>
    </message>
    <message>
        <source>Text columns stored as TIMESTAMP in microseconds, such as 2026-01-31T04:30:05.25, all with a final Z or none. Any other text is an error.</source>
        <translation>Colonnes de textes enregistrées en TIMESTAMP en microsecondes, tels que 2026-01-31T04:30:05.25, tous avec un Z final ou aucun. Tout autre texte est une erreur.</translation>
    </message>
    <message>
        <source>Text columns stored as TIME in microseconds, such as 04:30:05. Any other text is an error.</source>
        <translation>Colonnes de textes enregistrées en TIME en microsecondes, tels que 04:30:05. Tout autre texte est une erreur.</translation>
    </message>
    <message>
        <source>Text columns that become numbers: true is 1 and false is 0, in any letter case. Other texts become missing, with a warning.</source>
        <translation>Colonnes de textes qui deviennent des nombres&#xa0;: true donne 1 et false donne 0, en majuscules ou en minuscules. Les autres textes deviennent manquants, avec un avertissement.</translation>
    </message>
    <message>
        <source>Choose rows by number, and choose, order and rename columns</source>
        <translation>Choisir des lignes par numéro, et choisir, ordonner et renommer des colonnes</translation>
    </message>
    <message>
        <source>First row</source>
        <translation>Première ligne</translation>
    </message>
    <message>
        <source>Number of the first row of the output; rows count from 1.</source>
        <translation>Numéro de la première ligne de la sortie, à partir de 1.</translation>
    </message>
    <message>
        <source>Last row</source>
        <translation>Dernière ligne</translation>
    </message>
    <message>
        <source>Number of the last row of the output; -1: the last row of the table. The input is read no further.</source>
        <translation>Numéro de la dernière ligne de la sortie&#xa0;; -1&#xa0;: la dernière ligne de la table. L&apos;entrée n&apos;est pas lue plus loin.</translation>
    </message>
    <message>
        <source>Names of the columns of the output, in order. None: all columns.</source>
        <translation>Noms des colonnes de la sortie, dans l&apos;ordre. Aucun&#xa0;: toutes les colonnes.</translation>
    </message>
    <message>
        <source>New names</source>
        <translation>Nouveaux noms</translation>
    </message>
    <message>
        <source>old=new, one per line: new names of columns of the output.</source>
        <translation>ancien=nouveau, un par ligne&#xa0;: nouveaux noms de colonnes de la sortie.</translation>
    </message>
    <message>
        <source>Keep the rows for which an expression is true</source>
        <translation>Garder les lignes pour lesquelles une expression est vraie</translation>
    </message>
    <message>
        <source>Rows to keep</source>
        <translation>Lignes à garder</translation>
    </message>
    <message>
        <source>Expression that is true for the rows of the output, for example price &gt; 10 and (name = &apos;a b&apos; or day is null). Compares columns, numbers and texts in single quotes by = != &lt; &lt;= &gt; &gt;=; &quot;a column&quot; with blanks is in double quotes.</source>
        <translation>Expression vraie pour les lignes de la sortie, par exemple price &gt; 10 and (name = &apos;a b&apos; or day is null). Compare des colonnes, des nombres et des textes entre apostrophes par = != &lt; &lt;= &gt; &gt;=&#xa0;; &quot;une colonne&quot; avec des espaces est entre guillemets droits.</translation>
    </message>
    <message>
        <source>Kinds of text columns</source>
        <translation>Genres des colonnes de textes</translation>
    </message>
    <message>
        <source>column=kind, one per line; kinds: text, integer, decimal, boolean, date, datetime, time. Text columns of the kinds integer and decimal are compared as numbers, those of dates and times by time, and booleans without letter case.</source>
        <translation>colonne=genre, un par ligne&#xa0;; genres&#xa0;: text, integer, decimal, boolean, date, datetime, time. Les colonnes de textes des genres integer et decimal sont comparées comme des nombres, celles de dates et d&apos;heures selon le temps, et les booléens sans tenir compte de la casse.</translation>
    </message>
    <message>
        <source>Sort the rows</source>
        <translation>Trier les lignes</translation>
    </message>
    <message>
        <source>Sort by</source>
        <translation>Trier par</translation>
    </message>
    <message>
        <source>Names of columns, the most significant first; -NAME: descending. Missing cells come last in both directions. Rows with equal keys keep their order.</source>
        <translation>Noms de colonnes, la plus importante d&apos;abord&#xa0;; -NAME&#xa0;: ordre décroissant. Les cellules manquantes viennent en dernier dans les deux sens. Les lignes de clés égales gardent leur ordre.</translation>
    </message>
    <message>
        <source>Change the types of columns</source>
        <translation>Changer les types des colonnes</translation>
    </message>
    <message>
        <source>Values that do not fit</source>
        <translation>Valeurs inadaptées</translation>
    </message>
    <message>
        <source>What happens to a value that the new type does not have.</source>
        <translation>Ce qu&apos;il advient d&apos;une valeur que le nouveau type ne permet pas.</translation>
    </message>
    <message>
        <source>fail</source>
        <translation>signaler une erreur</translation>
    </message>
    <message>
        <source>The run fails and names row, column and value.</source>
        <translation>L&apos;exécution échoue et nomme la ligne, la colonne et la valeur.</translation>
    </message>
    <message>
        <source>The cell becomes missing; a warning counts them.</source>
        <translation>La cellule devient manquante&#xa0;; un avertissement les compte.</translation>
    </message>
    <message>
        <source>Types</source>
        <translation>Types</translation>
    </message>
    <message>
        <source>column=LETTER, one per line: K (whole number), F (decimal number), U (text). Other columns stay as they are.</source>
        <translation>colonne=LETTRE, une par ligne&#xa0;: K (nombre entier), F (nombre décimal), U (texte). Les autres colonnes restent inchangées.</translation>
    </message>
    <message>
        <source>Join the rows of two tables that have equal keys</source>
        <translation>Joindre les lignes de deux tables qui ont des clés égales</translation>
    </message>
    <message>
        <source>Rows without a partner</source>
        <translation>Lignes sans correspondance</translation>
    </message>
    <message>
        <source>Which rows without a partner are in the output.</source>
        <translation>Lignes sans correspondance qui sont dans la sortie.</translation>
    </message>
    <message>
        <source>inner</source>
        <translation>aucune</translation>
    </message>
    <message>
        <source>left</source>
        <translation>de la première table</translation>
    </message>
    <message>
        <source>full</source>
        <translation>des deux tables</translation>
    </message>
    <message>
        <source>Only rows that have a partner in the other table.</source>
        <translation>Seulement les lignes qui ont une correspondance dans l&apos;autre table.</translation>
    </message>
    <message>
        <source>Also the rows of the first table without a partner.</source>
        <translation>Aussi les lignes de la première table sans correspondance.</translation>
    </message>
    <message>
        <source>Also the rows of both tables without a partner.</source>
        <translation>Aussi les lignes des deux tables sans correspondance.</translation>
    </message>
    <message>
        <source>Suffix</source>
        <translation>Suffixe</translation>
    </message>
    <message>
        <source>Added to the name of a column of the second table that the first has too.</source>
        <translation>Ajouté au nom d&apos;une colonne de la deuxième table que la première a aussi.</translation>
    </message>
    <message>
        <source>Keys</source>
        <translation>Clés</translation>
    </message>
    <message>
        <source>Columns whose values must be equal: NAME if both tables have it, else NAME=NAME of the second table. Missing cells are equal to nothing.</source>
        <translation>Colonnes dont les valeurs doivent être égales&#xa0;: NAME si les deux tables l&apos;ont, sinon NAME=NAME de la deuxième table. Une cellule manquante n&apos;est égale à rien.</translation>
    </message>
    <message>
        <source>Append tables to each other</source>
        <translation>Réunir des tables bout à bout</translation>
    </message>
    <message>
        <source>Columns that belong together</source>
        <translation>Colonnes à réunir</translation>
    </message>
    <message>
        <source>Which columns of the tables become one column of the output.</source>
        <translation>Colonnes des tables qui deviennent une même colonne de la sortie.</translation>
    </message>
    <message>
        <source>by position</source>
        <translation>par position</translation>
    </message>
    <message>
        <source>by name, all equal</source>
        <translation>par nom, tous égaux</translation>
    </message>
    <message>
        <source>The output has every column of every table; cells of other tables are missing.</source>
        <translation>La sortie a toutes les colonnes de toutes les tables&#xa0;; les cellules des autres tables sont manquantes.</translation>
    </message>
    <message>
        <source>All tables have the same number of columns; the names are those of the first.</source>
        <translation>Toutes les tables ont le même nombre de colonnes&#xa0;; les noms sont ceux de la première.</translation>
    </message>
    <message>
        <source>All tables have the same names in the same order; anything else is an error.</source>
        <translation>Toutes les tables ont les mêmes noms dans le même ordre&#xa0;; tout autre cas est une erreur.</translation>
    </message>
    <message>
        <source>lf: a line feed, with or without a carriage return before it. auto: carriage returns alone if the first 64 KiB have no line feed.</source>
        <translation>lf : un saut de ligne, précédé ou non d&apos;un retour chariot. auto : des retours chariot seuls si les premiers 64 Kio n&apos;ont pas de saut de ligne.</translation>
    </message>
    <message>
        <source>The character between the digits of decimal numbers in text columns: a point or a comma, for example.</source>
        <translation>Le caractère entre les chiffres des nombres décimaux dans les colonnes de textes : un point ou une virgule, par exemple.</translation>
    </message>
    <message>
        <source>Last column</source>
        <translation>Dernière colonne</translation>
    </message>
    <message>
        <source>Name of a column that is the last one of the output, such as _FileNames. Empty: the columns keep the order in which they appear.</source>
        <translation>Nom d&apos;une colonne qui est la dernière de la sortie, par exemple _FileNames. Vide : les colonnes gardent l&apos;ordre dans lequel elles apparaissent.</translation>
    </message>
    <message>
        <source>Number equal column names</source>
        <translation>Numéroter les noms de colonnes égaux</translation>
    </message>
    <message>
        <source>The second and later columns of one name get _2, _3, ... Off: they keep the name, which most file formats do not allow.</source>
        <translation>La deuxième colonne d&apos;un même nom et les suivantes reçoivent _2, _3, ... Désactivé : elles gardent le nom, ce que la plupart des formats de fichiers n&apos;autorisent pas.</translation>
    </message>
    <message>
        <source>Number of the first row that is read of each file, from 1. The values of the rows before it are not read.</source>
        <translation>Numéro de la première ligne lue de chaque fichier, à partir de 1. Les valeurs des lignes précédentes ne sont pas lues.</translation>
    </message>
    <message>
        <source>Number of rows</source>
        <translation>Nombre de lignes</translation>
    </message>
    <message>
        <source>Number of rows of each file that are read, starting at firstRow; 0: all.</source>
        <translation>Nombre de lignes lues de chaque fichier, à partir de firstRow ; 0 : toutes.</translation>
    </message>
    <message>
        <source>Number of the first row that is read of each file, from 1. Row groups before it are not decoded.</source>
        <translation>Numéro de la première ligne lue de chaque fichier, à partir de 1. Les groupes de lignes précédents ne sont pas décodés.</translation>
    </message>
    <message>
        <source>Join files of one format</source>
        <translation>Réunir des fichiers d’un même format</translation>
    </message>
    <message>
        <source>File to write. Its extension is the format: parquet, csv, tsv, jsonl or json; .gz compresses texts.</source>
        <translation>Fichier à écrire. Son extension est le format : parquet, csv, tsv, jsonl ou json ; .gz compresse les textes.</translation>
    </message>
    <message>
        <source>The file has every column of every part; values of other parts are missing. Off: all parts must have the same columns in the same order.</source>
        <translation>Le fichier a toutes les colonnes de toutes les parties ; les valeurs des autres parties manquent. Désactivé : toutes les parties doivent avoir les mêmes colonnes dans le même ordre.</translation>
    </message>
    <message>
        <source>Parts</source>
        <translation>Parties</translation>
    </message>
    <message>
        <source>Files to join, in this order; patterns such as part-*.parquet stand for the files that they match. All have the format of the output.</source>
        <translation>Fichiers à réunir, dans cet ordre ; un motif tel que part-*.parquet représente les fichiers qui lui correspondent. Tous ont le format du fichier écrit.</translation>
    </message>
    <message>
        <source>all rows</source>
        <translation>toutes les lignes</translation>
    </message>
    <message>
        <source>no limit</source>
        <translation>sans limite</translation>
    </message>
    <message>
        <source>How long the action waits while another program writes to the file; -1: without limit.</source>
        <translation>Durée pendant laquelle l&apos;action attend qu&apos;un autre programme ait fini d&apos;écrire dans le fichier&#xa0;; -1&#xa0;: sans limite.</translation>
    </message>
    <message>
        <source>the last row of the table</source>
        <translation>la dernière ligne de la table</translation>
    </message>
    <message>
        <source>Tag names</source>
        <translation>Noms des balises</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>Numéro</translation>
    </message>
    <message>
        <source>as all numbers</source>
        <translation>comme tous les nombres</translation>
    </message>
    <message>
        <source>Widths</source>
        <translation>Largeurs</translation>
    </message>
    <message>
        <source>Header row</source>
        <translation>En-tête</translation>
    </message>
    <message>
        <source>Tables, one per input pin</source>
        <translation>Tableaux, un par entrée</translation>
    </message>
    <message>
        <source>Decimal comma (without effect)</source>
        <translation>Virgule décimale (sans effet)</translation>
    </message>
    <message>
        <source>One V (n, label, format) per column that needs one, with its name, a label and a format of SAS such as DATE9.</source>
        <translation>Un V (n, label, format) par colonne qui en a besoin, avec son nom, un libellé et un format SAS tel que DATE9.</translation>
    </message>
    <message>
        <source>One V (n, label, format, l) per column that needs one, with its name, a label, a format of SAS such as DATE9., and the width of its numbers.</source>
        <translation>Un V (n, label, format, l) par colonne qui en a besoin, avec son nom, un libellé, un format SAS tel que DATE9. et la largeur de ses nombres.</translation>
    </message>
    <message>
        <source>Bytes of each number, 3 to 8; 0: numberWidth.</source>
        <translation>Octets de chaque nombre, de 3 à 8&#xa0;; 0&#xa0;: numberWidth.</translation>
    </message>
    <message>
        <source>Reads fields of currency (Y) as numbers, uses the null flags and texts of varying length of Visual FoxPro, and leaves out objects and pictures (G, P, and B outside FoxPro), with a warning. Off: a table with currency, objects or pictures is rejected.</source>
        <translation>Lit les champs de monnaie (Y) comme des nombres, utilise les indicateurs de valeur nulle et les textes de longueur variable de Visual FoxPro, et ignore les objets et les images (G, P, et B hors de FoxPro), avec un avertissement. Désactivé : une table avec des montants, des objets ou des images est refusée.</translation>
    </message>
    <message>
        <source>Encoding that the table names</source>
        <translation>Codage indiqué par la table</translation>
    </message>
    <message>
        <source>Reads texts in the encoding that the header of the table or its .cpg file names. Off, or if they name none: in that of the parameter encoding.</source>
        <translation>Lit les textes dans le codage qu'indique l'en-tête de la table ou son fichier .cpg. Désactivé, ou s'ils n'en indiquent aucun : dans celui du paramètre encoding.</translation>
    </message>
</context>
<context>
    <name>Problems</name>
    <message>
        <source>the template has no style &apos;%1&apos;: the table at &apos;%%2%&apos; has no format</source>
        <translation>le modèle n&apos;a pas le style «&#xa0;%1&#xa0;»&#xa0;: le tableau de «&#xa0;%%2%&#xa0;» n&apos;a pas de format</translation>
    </message>
    <message>
        <source>the marker &apos;%1&apos; is divided into several runs and stays in the document: type it again in one go, or set joinRuns=&apos;1&apos;</source>
        <translation>le repère «&#xa0;%1&#xa0;» est divisé en plusieurs segments et reste dans le document&#xa0;: retapez-le d&apos;un trait, ou mettez joinRuns=&apos;1&apos;</translation>
    </message>
    <message>
        <source>the template has no marker &apos;%1&apos;: the table on input pin %2 is not written</source>
        <translation>le modèle n&apos;a pas le repère «&#xa0;%1&#xa0;»&#xa0;: le tableau de l&apos;entrée %2 n&apos;est pas écrit</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not a format of a floating-point number</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;est pas un format de nombre à virgule flottante</translation>
    </message>
    <message>
        <source>the document &apos;%1&apos; would replace its own template: choose another output name</source>
        <translation>le document «&#xa0;%1&#xa0;» remplacerait son propre modèle&#xa0;: choisissez un autre nom</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not used: sheetMode=&apos;1&apos; reads the sheet of this name</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;est pas utilisé&#xa0;: sheetMode=&apos;1&apos; lit la feuille de ce nom</translation>
    </message>
    <message>
        <source>the marker &apos;%1&apos; of input pin %2 already exists: all markers must be different</source>
        <translation>la marque «&#xa0;%1&#xa0;» de l&apos;entrée %2 existe déjà&#xa0;: toutes les marques doivent être différentes</translation>
    </message>
    <message>
        <source>cannot read the template &apos;%1&apos;: %2</source>
        <translation>le modèle «&#xa0;%1&#xa0;» ne peut pas être lu&#xa0;: %2</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not a Word document with styles</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;est pas un document Word avec des styles</translation>
    </message>
    <message>
        <source>is empty</source>
        <translation>est vide</translation>
    </message>
    <message>
        <source>contains one of / \ ? * [ ] : or a control character</source>
        <translation>contient un des caractères / \&#xa0;? * [ ]&#xa0;: ou un caractère de contrôle</translation>
    </message>
    <message>
        <source>begins or ends with an apostrophe</source>
        <translation>commence ou finit par une apostrophe</translation>
    </message>
    <message>
        <source>is reserved</source>
        <translation>est réservé</translation>
    </message>
    <message>
        <source>differs only in letter case from &apos;%1&apos;</source>
        <translation>ne diffère de «&#xa0;%1&#xa0;» que par la casse</translation>
    </message>
    <message>
        <source>is not a letter or _ followed by letters, digits, _ and .</source>
        <translation>n&apos;est pas une lettre ou _ suivie de lettres, de chiffres, de _ et de .</translation>
    </message>
    <message>
        <source>is also a reference to cells</source>
        <translation>est aussi une référence à des cellules</translation>
    </message>
    <message>
        <source>ToDate lists columns, but without a date format no text is a date</source>
        <translation>ToDate contient des colonnes, mais sans format de date aucun texte n&apos;est une date</translation>
    </message>
    <message>
        <source>&apos;%1&apos; has years of two digits, which are read as 1900 to 1999</source>
        <translation>«&#xa0;%1&#xa0;» a des années à deux chiffres, lues comme 1900 à 1999</translation>
    </message>
    <message>
        <source>&apos;%1&apos; %2: the workbook may not open</source>
        <translation>«&#xa0;%1&#xa0;» %2&#xa0;: le classeur pourrait ne pas s&apos;ouvrir</translation>
    </message>
    <message>
        <source>&apos;%1&apos; prints numbers that JSON does not have</source>
        <translation>«&#xa0;%1&#xa0;» produit des nombres qui n&apos;existent pas en JSON</translation>
    </message>
    <message>
        <source>the extension is not .xlsx, .docx or .pptx</source>
        <translation>l&apos;extension n&apos;est pas .xlsx, .docx ou .pptx</translation>
    </message>
    <message>
        <source>the file &apos;%1&apos; of &apos;template&apos; does not exist</source>
        <translation>le fichier «&#xa0;%1&#xa0;» de «&#xa0;template&#xa0;» n&apos;existe pas</translation>
    </message>
    <message>
        <source>the encoding &apos;%1&apos; is unknown, or its characters have several bytes</source>
        <translation>le codage «&#xa0;%1&#xa0;» est inconnu, ou ses caractères ont plusieurs octets</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not a format of SAS, such as DATE9.</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;est pas un format SAS, tel que DATE9.</translation>
    </message>
    <message>
        <source>the actions &apos;%1&apos; and &apos;%2&apos; create the same file &apos;%3&apos;</source>
        <translation>les actions «&#xa0;%1&#xa0;» et «&#xa0;%2&#xa0;» créent le même fichier «&#xa0;%3&#xa0;»</translation>
    </message>
    <message>
        <source>the action &apos;%2&apos; creates the file &apos;%3&apos; after the action &apos;%1&apos; has written to it</source>
        <translation>l&apos;action «&#xa0;%2&#xa0;» crée le fichier «&#xa0;%3&#xa0;» après que l&apos;action «&#xa0;%1&#xa0;» y a écrit</translation>
    </message>
    <message>
        <source>the action &apos;%1&apos; reads the file &apos;%3&apos;, to which the action &apos;%2&apos; appends</source>
        <translation>l&apos;action «&#xa0;%1&#xa0;» lit le fichier «&#xa0;%3&#xa0;», auquel l&apos;action «&#xa0;%2&#xa0;» ajoute des données</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is required and empty</source>
        <translation>«&#xa0;%1&#xa0;» est nécessaire et vide</translation>
    </message>
    <message>
        <source>is a folder</source>
        <translation>est un dossier</translation>
    </message>
    <message>
        <source>does not exist</source>
        <translation>n&apos;existe pas</translation>
    </message>
    <message>
        <source>the file &apos;%1&apos; of &apos;%2&apos; %3</source>
        <translation>le fichier «&#xa0;%1&#xa0;» de «&#xa0;%2&#xa0;» %3</translation>
    </message>
    <message>
        <source>the file &apos;%1&apos; does not exist</source>
        <translation>le fichier «&#xa0;%1&#xa0;» n&apos;existe pas</translation>
    </message>
    <message>
        <source>the target &apos;%1&apos; is a folder</source>
        <translation>la destination «&#xa0;%1&#xa0;» est un dossier</translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; of the target does not exist, and &apos;%2&apos; is not a folder</source>
        <translation>le dossier «&#xa0;%1&#xa0;» de la destination n&apos;existe pas, et «&#xa0;%2&#xa0;» n&apos;est pas un dossier</translation>
    </message>
    <message>
        <source>the folder &apos;%1&apos; of the target does not exist%2</source>
        <translation>le dossier «&#xa0;%1&#xa0;» de la destination n&apos;existe pas%2</translation>
    </message>
    <message>
        <source> (createDir=&apos;1&apos; creates it)</source>
        <translation> (createDir=&apos;1&apos; le crée)</translation>
    </message>
    <message>
        <source>a whole number from %1 to %2</source>
        <translation>un nombre entier de %1 à %2</translation>
    </message>
    <message>
        <source>a whole number from %1</source>
        <translation>un nombre entier à partir de %1</translation>
    </message>
    <message>
        <source>a whole number</source>
        <translation>un nombre entier</translation>
    </message>
    <message>
        <source>a decimal number</source>
        <translation>un nombre décimal</translation>
    </message>
    <message>
        <source>any text</source>
        <translation>un texte</translation>
    </message>
    <message>
        <source>texts</source>
        <translation>textes</translation>
    </message>
    <message>
        <source>XML elements &apos;%1&apos;</source>
        <translation>des éléments XML «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>&apos;%1&apos; has no number format after the column&apos;s name</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;a pas de format de nombre après le nom de la colonne</translation>
    </message>
    <message>
        <source>the number format in &apos;%1&apos; has more than 255 characters</source>
        <translation>le format de nombre dans «&#xa0;%1&#xa0;» a plus de 255 caractères</translation>
    </message>
    <message>
        <source>the number format in &apos;%1&apos; has a control character</source>
        <translation>le format de nombre dans «&#xa0;%1&#xa0;» a un caractère de contrôle</translation>
    </message>
    <message>
        <source>the number format in &apos;%1&apos; has a text without its closing quote</source>
        <translation>le format de nombre dans «&#xa0;%1&#xa0;» a un texte sans guillemet fermant</translation>
    </message>
    <message>
        <source>the number format in &apos;%1&apos; has a [ without its ]</source>
        <translation>le format de nombre dans «&#xa0;%1&#xa0;» a un [ sans son ]</translation>
    </message>
    <message>
        <source>the number format in &apos;%1&apos; has letters without a meaning: write texts in double quotes</source>
        <translation>le format de nombre dans «&#xa0;%1&#xa0;» a des lettres sans signification&#xa0;: les textes s&apos;écrivent entre guillemets droits</translation>
    </message>
    <message>
        <source>the number format in &apos;%1&apos; has more than four sections</source>
        <translation>le format de nombre dans «&#xa0;%1&#xa0;» a plus de quatre sections</translation>
    </message>
    <message>
        <source>the number format in &apos;%1&apos; ends with \, _ or *, which need a character after them</source>
        <translation>le format de nombre dans «&#xa0;%1&#xa0;» se termine par \, _ ou *, qui demandent un caractère à leur suite</translation>
    </message>
    <message>
        <source>&apos;%1&apos; does not have the form COLUMN=FORMAT</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;a pas la forme COLUMN=FORMAT</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not a style (bold, fill or bold,fill)</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;est pas un style (bold, fill ou bold,fill)</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not a width (auto, or numbers from 1 to 255, separated by commas)</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;est pas une largeur (auto, ou nombres de 1 à 255, séparés par des virgules)</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not allowed (newSheet or empty)</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;est pas autorisé (newSheet ou vide)</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not a column and a type (K, F, U), for example price=F</source>
        <translation>&apos;%1&apos; n&apos;est pas une colonne et un type (K, F, U), par exemple price=F</translation>
    </message>
    <message>
        <source>invalid expression at character %1: %2</source>
        <translation>expression incorrecte au caractère %1&#xa0;: %2</translation>
    </message>
    <message>
        <source>%1=&apos;%2&apos; is not one ASCII character other than the separator</source>
        <translation>%1=&apos;%2&apos; n&apos;est pas un caractère ASCII autre que le séparateur</translation>
    </message>
    <message>
        <source>the encoding &apos;%1&apos; is unknown</source>
        <translation>le codage &apos;%1&apos; est inconnu</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not of the form COLUMN=FORMAT</source>
        <translation>&apos;%1&apos; n&apos;est pas de la forme COLUMN=FORMAT</translation>
    </message>
    <message>
        <source>ragged=&apos;%1&apos; is neither &apos;error&apos; nor &apos;fill&apos;</source>
        <translation>ragged=&apos;%1&apos; n&apos;est ni &apos;error&apos; ni &apos;fill&apos;</translation>
    </message>
    <message>
        <source>the value &apos;%1&apos; of &apos;%2&apos; is not allowed; allowed: a whole number from -1 to 4; the action goes by the ending of the file name</source>
        <translation>la valeur &apos;%1&apos; de &apos;%2&apos; n&apos;est pas permise&#xa0;; permis&#xa0;: un nombre entier de -1 à 4&#xa0;; l&apos;action se règle sur la fin du nom du fichier</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not an old and a new name, for example old=new</source>
        <translation>&apos;%1&apos; n&apos;est pas un ancien et un nouveau nom, par exemple old=new</translation>
    </message>
    <message>
        <source>the separator &apos;%1&apos; is not one ASCII character</source>
        <translation>le séparateur &apos;%1&apos; n&apos;est pas un caractère ASCII</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not a column type (%2)</source>
        <translation>&apos;%1&apos; n&apos;est pas un type de colonne (%2)</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not a column and a kind (%2), for example price=decimal</source>
        <translation>&apos;%1&apos; n&apos;est pas une colonne et un genre (%2), par exemple price=decimal</translation>
    </message>
    <message>
        <source>lineEnd=&apos;%1&apos; is neither &apos;lf&apos; nor &apos;crlf&apos;</source>
        <translation>lineEnd=&apos;%1&apos; n&apos;est ni &apos;lf&apos; ni &apos;crlf&apos;</translation>
    </message>
    <message>
        <source>the width &apos;%1&apos; of the table on input pin %2 is not allowed; allowed: a whole number from 1 to 31680</source>
        <translation>la largeur &apos;%1&apos; de la table de l&apos;entrée %2 n&apos;est pas permise&#xa0;; permis&#xa0;: un nombre entier de 1 à 31680</translation>
    </message>
    <message>
        <source>Warning: the series of the tag &apos;%1&apos; has no element for the column &apos;%2&apos;, which is not written
</source>
        <translation>Avertissement&#xa0;: la série de la balise &apos;%1&apos; n&apos;a pas d&apos;élément pour la colonne &apos;%2&apos;, qui n&apos;est pas écrite
</translation>
    </message>
    <message>
        <source>Warning: the Chart &apos;%1&apos; has no column for the axis c:%2, which keeps the data of the template
</source>
        <translation>Avertissement&#xa0;: le graphique &apos;%1&apos; n&apos;a pas de colonne pour l&apos;axe c:%2, qui garde les données du modèle
</translation>
    </message>
    <message>
        <source>
warning: couldn&apos;t find chart type for tag %1</source>
        <translation>
Avertissement&#xa0;: le type de graphique de la balise %1 est introuvable</translation>
    </message>
    <message>
        <source>
warning: couldn&apos;t find y-Axis for tag %1</source>
        <translation>
Avertissement&#xa0;: l&apos;axe y de la balise %1 est introuvable</translation>
    </message>
    <message>
        <source>Warning: the tag &apos;%1&apos; is divided by formatting and is ignored: type it again in one piece
</source>
        <translation>Avertissement&#xa0;: la balise &apos;%1&apos; est divisée par une mise en forme et ignorée&#xa0;: retapez-la d&apos;un seul tenant
</translation>
    </message>
    <message>
        <source>
ERROR: The template file &apos;%1&apos; contains a new un-initialized tag named &apos;%2&apos;
</source>
        <translation>
Erreur&#xa0;: le modèle &apos;%1&apos; contient une nouvelle balise non initialisée nommée &apos;%2&apos;
</translation>
    </message>
    <message>
        <source>Warning: the template file &apos;%1&apos; has no tag for the Chart &apos;%2&apos;: its data is not written
</source>
        <translation>Avertissement&#xa0;: le modèle &apos;%1&apos; n&apos;a pas de balise pour le graphique &apos;%2&apos;&#xa0;: ses données ne sont pas écrites
</translation>
    </message>
    <message>
        <source>Warning: the tag &apos;%1&apos; has several Charts; only the first is used
</source>
        <translation>Avertissement&#xa0;: la balise &apos;%1&apos; a plusieurs graphiques&#xa0;; seul le premier est utilisé
</translation>
    </message>
    <message>
        <source>Error: the axis &apos;%1&apos; of the Chart &apos;%2&apos; has the input pin %3; allowed: a whole number from 0 to %4
</source>
        <translation>Erreur&#xa0;: l&apos;axe &apos;%1&apos; du graphique &apos;%2&apos; a l&apos;entrée %3&#xa0;; permis&#xa0;: un nombre entier de 0 à %4
</translation>
    </message>
    <message>
        <source>Warning: the part &apos;%1&apos; of the template is not UTF-8 text: its tags are ignored. Save the template again with an office program
</source>
        <translation>Avertissement&#xa0;: la partie &apos;%1&apos; du modèle n&apos;est pas un texte UTF-8&#xa0;: ses balises sont ignorées. Enregistrez à nouveau le modèle avec un programme de bureautique
</translation>
    </message>
    <message>
        <source>
warning: couldn&apos;t find any tag to replace ([[KOBData &lt;reference&gt;]]) in file %1</source>
        <translation>
Avertissement&#xa0;: aucune balise à remplacer ([[KOBData &lt;reference&gt;]]) dans le fichier %1</translation>
    </message>
    <message>
        <source>cannot read Report Template file %1</source>
        <translation>le fichier de modèle %1 ne peut pas être lu</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not a number</source>
        <translation>&apos;%1&apos; n&apos;est pas un nombre</translation>
    </message>
    <message>
        <source>the quote that begins here is never closed</source>
        <translation>le guillemet qui commence ici n&apos;est jamais fermé</translation>
    </message>
    <message>
        <source>unexpected character &apos;%1&apos;</source>
        <translation>caractère inattendu &apos;%1&apos;</translation>
    </message>
    <message>
        <source>&apos;and&apos;, &apos;or&apos; or the end</source>
        <translation>&apos;and&apos;, &apos;or&apos; ou la fin</translation>
    </message>
    <message>
        <source>the end</source>
        <translation>la fin</translation>
    </message>
    <message>
        <source>expected %1, found %2</source>
        <translation>attendu&#xa0;: %1, trouvé&#xa0;: %2</translation>
    </message>
    <message>
        <source>more than %1 parentheses are open</source>
        <translation>plus de %1 parenthèses sont ouvertes</translation>
    </message>
    <message>
        <source>= != &lt; &lt;= &gt; &gt;= or &apos;is null&apos;</source>
        <translation>= != &lt; &lt;= &gt; &gt;= ou &apos;is null&apos;</translation>
    </message>
    <message>
        <source>&apos;null&apos; or &apos;not null&apos;</source>
        <translation>&apos;null&apos; ou &apos;not null&apos;</translation>
    </message>
    <message>
        <source>compare with &apos;is null&apos; or &apos;is not null&apos;</source>
        <translation>comparez avec &apos;is null&apos; ou &apos;is not null&apos;</translation>
    </message>
    <message>
        <source>a column, a number or a text in single quotes</source>
        <translation>une colonne, un nombre ou un texte entre apostrophes</translation>
    </message>
    <message>
        <source>lineEnd=&apos;%1&apos; is neither &apos;lf&apos; nor &apos;auto&apos;</source>
        <translation>lineEnd=&apos;%1&apos; n&apos;est ni &apos;lf&apos; ni &apos;auto&apos;</translation>
    </message>
    <message>
        <source>files such as &apos;%1&apos; cannot be merged; parquet, csv, txt, tsv, tab, jsonl, ndjson and json can be, the texts also with .gz</source>
        <translation>les fichiers tels que « %1 » ne peuvent pas être réunis ; parquet, csv, txt, tsv, tab, jsonl, ndjson et json le peuvent, les textes aussi avec .gz</translation>
    </message>
    <message>
        <source>the part &apos;%1&apos; does not have the extension of a %2 file, as the output has; convert joins files of several formats</source>
        <translation>la partie « %1 » n’a pas l’extension d’un fichier %2, comme le fichier écrit ; convert réunit des fichiers de plusieurs formats</translation>
    </message>
    <message>
        <source>no link leads to this writer</source>
        <translation>aucun lien ne mène à cette action d&apos;écriture</translation>
    </message>
    <message>
        <source>no link leads to its input pins</source>
        <translation>aucun lien ne mène à ses entrées</translation>
    </message>
    <message>
        <source>has more than 255 characters</source>
        <translation>a plus de 255 caractères</translation>
    </message>
</context>
<context>
    <name>QPlatformTheme</name>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Enregistrer</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>Ne pas enregistrer</translation>
    </message>
    <message>
        <source>&amp;Yes</source>
        <translation>&amp;Oui</translation>
    </message>
    <message>
        <source>&amp;No</source>
        <translation>&amp;Non</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
</context>
<context>
    <name>Units</name>
    <message numerus="yes">
        <source>rows</source>
        <translation>
            <numerusform>ligne</numerusform>
            <numerusform>lignes</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>seconds</source>
        <translation>
            <numerusform>seconde</numerusform>
            <numerusform>secondes</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>MB</source>
        <translation>
            <numerusform>Mo</numerusform>
            <numerusform>Mo</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>records</source>
        <translation>
            <numerusform>enregistrement</numerusform>
            <numerusform>enregistrements</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>KiB</source>
        <translation>
            <numerusform>Kio</numerusform>
            <numerusform>Kio</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>MiB</source>
        <translation>
            <numerusform>Mio</numerusform>
            <numerusform>Mio</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>bytes</source>
        <translation>
            <numerusform>octet</numerusform>
            <numerusform>octets</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>lines</source>
        <translation>
            <numerusform>ligne</numerusform>
            <numerusform>lignes</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>corvanta::AutoFill</name>
    <message>
        <source>columns: %1</source>
        <translation>colonnes : %1</translation>
    </message>
    <message>
        <source>Fill from the file</source>
        <translation>Remplir d&apos;après le fichier</translation>
    </message>
    <message>
        <source>List the sheets</source>
        <translation>Lister les feuilles</translation>
    </message>
    <message>
        <source>Reads the beginning of the file and adds the levels and columns that are missing</source>
        <translation>Lit le début du fichier et ajoute les niveaux et les colonnes qui manquent</translation>
    </message>
    <message>
        <source>Lists the sheets of the file, to choose one</source>
        <translation>Liste les feuilles du fichier, pour en choisir une</translation>
    </message>
    <message>
        <source>Table:</source>
        <translation>Table&#xa0;:</translation>
    </message>
    <message>
        <source>Sheet:</source>
        <translation>Feuille&#xa0;:</translation>
    </message>
    <message>
        <source>Use</source>
        <translation>Utiliser</translation>
    </message>
    <message>
        <source>Tables of the file</source>
        <translation>Tables du fichier</translation>
    </message>
    <message>
        <source>The table that is read</source>
        <translation>La table qui est lue</translation>
    </message>
    <message>
        <source>Use the table</source>
        <translation>Utiliser la table</translation>
    </message>
    <message>
        <source>Sets the parameters that read the chosen table</source>
        <translation>Définit les paramètres qui lisent la table choisie</translation>
    </message>
    <message numerus="yes">
        <source>The file has %n tables. Choose one.</source>
        <translation>
            <numerusform>Le fichier a %n table. Choisissez-en une.</numerusform>
            <numerusform>Le fichier a %n tables. Choisissez-en une.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The file has %n sheets. Choose one.</source>
        <translation>
            <numerusform>Le fichier a %n feuille. Choisissez-en une.</numerusform>
            <numerusform>Le fichier a %n feuilles. Choisissez-en une.</numerusform>
        </translation>
    </message>
    <message>
        <source>Settings for new levels are not changed: %1</source>
        <translation>Les paramètres des nouveaux niveaux restent inchangés&#xa0;: %1</translation>
    </message>
    <message>
        <source>Also set: %1</source>
        <translation>Aussi définis&#xa0;: %1</translation>
    </message>
    <message>
        <source>Nothing new was found in the file.</source>
        <translation>Rien de nouveau dans le fichier.</translation>
    </message>
    <message>
        <source>Columns added: %1.</source>
        <translation>Colonnes ajoutées : %1.</translation>
    </message>
    <message>
        <source>Columns added: %1; new levels: %2.</source>
        <translation>Colonnes ajoutées : %1 ; nouveaux niveaux : %2.</translation>
    </message>
    <message>
        <source>The level “%1” of the file is not added: another level is in its place.</source>
        <translation>Le niveau «&#xa0;%1&#xa0;» du fichier n&apos;est pas ajouté&#xa0;: un autre niveau occupe sa place.</translation>
    </message>
    <message>
        <source>The file has only this sheet.</source>
        <translation>Le fichier n&apos;a que cette feuille.</translation>
    </message>
    <message>
        <source>This sheet is read already.</source>
        <translation>Cette feuille est déjà lue.</translation>
    </message>
    <message>
        <source>Set: %1</source>
        <translation>Définis&#xa0;: %1</translation>
    </message>
    <message>
        <source>“%1” is set, but other settings ignore it.</source>
        <translation>«&#xa0;%1&#xa0;» est défini, mais d&apos;autres paramètres l&apos;ignorent.</translation>
    </message>
</context>
<context>
    <name>corvanta::CellTexts</name>
    <message>
        <source>number</source>
        <translation>nombre</translation>
    </message>
    <message>
        <source>key</source>
        <translation>clé</translation>
    </message>
    <message>
        <source>text</source>
        <translation>texte</translation>
    </message>
    <message>
        <source>missing</source>
        <translation>manquant</translation>
    </message>
</context>
<context>
    <name>corvanta::ChartAxesField</name>
    <message>
        <source>Categories</source>
        <translation>Catégories</translation>
    </message>
    <message>
        <source>Values</source>
        <translation>Valeurs</translation>
    </message>
    <message>
        <source>X values</source>
        <translation>Valeurs X</translation>
    </message>
    <message>
        <source>Y values</source>
        <translation>Valeurs Y</translation>
    </message>
    <message>
        <source>Bubble sizes</source>
        <translation>Tailles des bulles</translation>
    </message>
    <message>
        <source>Plus error bars</source>
        <translation>Barres d&apos;erreur plus</translation>
    </message>
    <message>
        <source>Minus error bars</source>
        <translation>Barres d&apos;erreur moins</translation>
    </message>
    <message>
        <source>No data</source>
        <translation>Aucune donnée</translation>
    </message>
    <message>
        <source>Pin %1</source>
        <translation>Entrée %1</translation>
    </message>
    <message>
        <source>Input pin: %1</source>
        <translation>Entrée&#xa0;: %1</translation>
    </message>
    <message>
        <source>Column: %1</source>
        <translation>Colonne&#xa0;: %1</translation>
    </message>
    <message>
        <source>input pin %1 has no column &apos;%2&apos;</source>
        <translation>l&apos;entrée %1 n&apos;a pas de colonne «&#xa0;%2&#xa0;»</translation>
    </message>
</context>
<context>
    <name>corvanta::ChartEditor</name>
    <message>
        <source>Add a chart</source>
        <translation>Ajouter un graphique</translation>
    </message>
    <message>
        <source>Add them</source>
        <translation>Les ajouter</translation>
    </message>
    <message>
        <source>Add the tags of the template that have no chart</source>
        <translation>Ajouter les balises du modèle qui n&apos;ont pas de graphique</translation>
    </message>
    <message>
        <source>(no tag)</source>
        <translation>(sans balise)</translation>
    </message>
    <message>
        <source>The template has no tag &apos;%1&apos;</source>
        <translation>Le modèle n&apos;a pas de balise «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>Tags of the template without a chart: &apos;%1&apos;</source>
        <translation>Balises du modèle sans graphique&#xa0;: «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>No charts yet: choose a template, or add one</source>
        <translation>Aucun graphique&#xa0;: choisir un modèle, ou en ajouter un</translation>
    </message>
</context>
<context>
    <name>corvanta::ChoiceEditor</name>
    <message>
        <source>automatic</source>
        <translation>automatique</translation>
    </message>
    <message>
        <source>other value (%1)</source>
        <translation>autre valeur (%1)</translation>
    </message>
</context>
<context>
    <name>corvanta::ColumnField</name>
    <message>
        <source>Name of a column</source>
        <translation>Nom d&apos;une colonne</translation>
    </message>
    <message>
        <source>Choose a column</source>
        <translation>Choisir une colonne</translation>
    </message>
</context>
<context>
    <name>corvanta::ColumnPicker</name>
    <message>
        <source>Type a name and press Enter to add it</source>
        <translation>Taper un nom puis Entrée pour l&apos;ajouter</translation>
    </message>
</context>
<context>
    <name>corvanta::DocTablesEditor</name>
    <message>
        <source>Add an input pin and its table</source>
        <translation>Ajouter une entrée et son tableau</translation>
    </message>
    <message>
        <source>Remove the last input pin and its table</source>
        <translation>Retirer la dernière entrée et son tableau</translation>
    </message>
    <message>
        <source>the template has no marker &apos;%%1%&apos;</source>
        <translation>le modèle n&apos;a pas de marque «&#xa0;%%1%&#xa0;»</translation>
    </message>
    <message>
        <source>Input pin %1</source>
        <translation>Entrée %1</translation>
    </message>
</context>
<context>
    <name>corvanta::ElementTable</name>
    <message>
        <source>Move the row up</source>
        <translation>Monter la ligne</translation>
    </message>
    <message>
        <source>Move the row down</source>
        <translation>Descendre la ligne</translation>
    </message>
</context>
<context>
    <name>corvanta::FileColumnPicker</name>
    <message>
        <source>List the columns of the file</source>
        <translation>Lister les colonnes du fichier</translation>
    </message>
    <message>
        <source>Reads the names of the columns from the file, to choose among them</source>
        <translation>Lit les noms des colonnes dans le fichier, pour en choisir</translation>
    </message>
    <message>
        <source>Columns in the file: %1.</source>
        <translation>Colonnes du fichier : %1.</translation>
    </message>
    <message>
        <source>Type a name and press Enter to add it</source>
        <translation>Taper un nom puis Entrée pour l&apos;ajouter</translation>
    </message>
    <message>
        <source>Type a name and press Enter; without one, all are read</source>
        <translation>Taper un nom puis Entrée ; sans nom, tout est lu</translation>
    </message>
</context>
<context>
    <name>corvanta::FileField</name>
    <message>
        <source>All files (*)</source>
        <translation>Tous les fichiers (*)</translation>
    </message>
    <message>
        <source>Files (%1);;%2</source>
        <translation>Fichiers (%1);;%2</translation>
    </message>
    <message>
        <source>Choose a file for %1</source>
        <translation>Choisir un fichier pour %1</translation>
    </message>
    <message>
        <source>Choose a file…</source>
        <translation>Choisir un fichier…</translation>
    </message>
    <message>
        <source>Choose a member of the archive…</source>
        <translation>Choisir un membre de l&apos;archive…</translation>
    </message>
    <message>
        <source>Insert a variable</source>
        <translation>Insérer une variable</translation>
    </message>
    <message>
        <source>Files with such a name: %1</source>
        <translation>Fichiers ayant un tel nom&#xa0;: %1</translation>
    </message>
    <message>
        <source>The file exists</source>
        <translation>Le fichier existe</translation>
    </message>
    <message>
        <source>The file cannot be read</source>
        <translation>Le fichier ne peut pas être lu</translation>
    </message>
    <message>
        <source>The file does not exist yet</source>
        <translation>Le fichier n&apos;existe pas encore</translation>
    </message>
    <message>
        <source>Open the written file</source>
        <translation>Ouvrir le fichier écrit</translation>
    </message>
</context>
<context>
    <name>corvanta::FileFill</name>
    <message>
        <source>There is no file to read: it has no name, or the input gives it.</source>
        <translation>Aucun fichier à lire&#xa0;: il n&apos;a pas de nom, ou l&apos;entrée le fournit.</translation>
    </message>
    <message>
        <source>“%1” is a pipe, which can be read only once.</source>
        <translation>«&#xa0;%1&#xa0;» est un tube, qui ne peut être lu qu&apos;une fois.</translation>
    </message>
</context>
<context>
    <name>corvanta::FloatFormatEditor</name>
    <message>
        <source>1234.56789 is written as %1</source>
        <translation>1234.56789 s&apos;écrit %1</translation>
    </message>
    <message>
        <source>expected a printf format with one conversion, for example %.2f</source>
        <translation>format printf attendu avec une conversion, par exemple %.2f</translation>
    </message>
</context>
<context>
    <name>corvanta::FoldingGroup</name>
    <message>
        <source>Shows the fields of this group</source>
        <translation>Affiche les champs de ce groupe</translation>
    </message>
    <message>
        <source>Hides the fields of this group</source>
        <translation>Masque les champs de ce groupe</translation>
    </message>
</context>
<context>
    <name>corvanta::ListEditor</name>
    <message>
        <source>%1 columns are not in the input, for example &apos;%2&apos;</source>
        <translation>%1 colonnes ne sont pas dans l&apos;entrée, par exemple «&#xa0;%2&#xa0;»</translation>
    </message>
    <message>
        <source>the input has no column &apos;%1&apos;</source>
        <translation>l&apos;entrée n&apos;a pas de colonne «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>Add the selected columns</source>
        <translation>Ajouter les colonnes sélectionnées</translation>
    </message>
    <message>
        <source>Remove the selected columns</source>
        <translation>Retirer les colonnes sélectionnées</translation>
    </message>
    <message>
        <source>Remove the selected lines</source>
        <translation>Retirer les lignes sélectionnées</translation>
    </message>
    <message>
        <source>In the input</source>
        <translation>Dans l&apos;entrée</translation>
    </message>
    <message>
        <source>Chosen</source>
        <translation>Choisies</translation>
    </message>
    <message>
        <source>Move the line up</source>
        <translation>Monter la ligne</translation>
    </message>
    <message>
        <source>Move the line down</source>
        <translation>Descendre la ligne</translation>
    </message>
    <message>
        <source>Search or add: %1</source>
        <translation>Rechercher ou ajouter&#xa0;: %1</translation>
    </message>
    <message>
        <source>Columns that can be added</source>
        <translation>Colonnes qui peuvent être ajoutées</translation>
    </message>
    <message>
        <source>Search, or type a name and press Enter</source>
        <translation>Rechercher, ou taper un nom puis Entrée</translation>
    </message>
    <message>
        <source>The input has no such column</source>
        <translation>L&apos;entrée n&apos;a pas cette colonne</translation>
    </message>
    <message>
        <source>Type a text and press Enter to add it</source>
        <translation>Taper un texte puis Entrée pour l&apos;ajouter</translation>
    </message>
</context>
<context>
    <name>corvanta::PanelHeading</name>
    <message>
        <source>Help</source>
        <translation>Aide</translation>
    </message>
    <message>
        <source>Help (F1)</source>
        <translation>Aide (F1)</translation>
    </message>
    <message>
        <source>Opens the help page of the action</source>
        <translation>Ouvre la page d&apos;aide de l&apos;action</translation>
    </message>
</context>
<context>
    <name>corvanta::PinCountField</name>
    <message>
        <source>Add an input pin</source>
        <translation>Ajouter une entrée</translation>
    </message>
    <message>
        <source>Remove the last input pin</source>
        <translation>Retirer la dernière entrée</translation>
    </message>
</context>
<context>
    <name>corvanta::Preview</name>
    <message>
        <source>First rows</source>
        <translation>Premières lignes</translation>
    </message>
    <message>
        <source>The first rows of the output, with names and types</source>
        <translation>Les premières lignes de la sortie, avec noms et types</translation>
    </message>
    <message>
        <source>Beginning of the file</source>
        <translation>Début du fichier</translation>
    </message>
    <message>
        <source>The beginning of the file, as text or as bytes</source>
        <translation>Le début du fichier, en texte ou en octets</translation>
    </message>
    <message>
        <source>Reading…</source>
        <translation>Lecture…</translation>
    </message>
    <message numerus="yes">
        <source>The first %n rows</source>
        <translation>
            <numerusform>%n première ligne</numerusform>
            <numerusform>Les %n premières lignes</numerusform>
        </translation>
    </message>
    <message>
        <source>Rows: %1</source>
        <translation>Lignes : %1</translation>
    </message>
    <message>
        <source>The input pin gives the file, or it has no name</source>
        <translation>L&apos;entrée fournit le fichier, ou il n&apos;a pas de nom</translation>
    </message>
    <message>
        <source>The first bytes of %1</source>
        <translation>Les premiers octets de %1</translation>
    </message>
    <message>
        <source>The beginning of %1</source>
        <translation>Le début de %1</translation>
    </message>
    <message>
        <source>The action cannot be run.</source>
        <translation>L&apos;action ne peut pas être exécutée.</translation>
    </message>
    <message>
        <source>A pipe can be read only once.</source>
        <translation>Un tube ne peut être lu qu&apos;une fois.</translation>
    </message>
</context>
<context>
    <name>corvanta::PropertyPanel</name>
    <message>
        <source>expected %1</source>
        <translation>valeur attendue&#xa0;: %1</translation>
    </message>
    <message>
        <source>A value is required</source>
        <translation>Une valeur est nécessaire</translation>
    </message>
    <message>
        <source>Problems: %1</source>
        <translation>Problèmes&#xa0;: %1</translation>
    </message>
    <message>
        <source>Values set: %1</source>
        <translation>Valeurs définies&#xa0;: %1</translation>
    </message>
    <message>
        <source>empty</source>
        <translation>vide</translation>
    </message>
    <message>
        <source> or </source>
        <translation> ou </translation>
    </message>
    <message>
        <source>“%1” is not %2</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;est pas %2</translation>
    </message>
    <message>
        <source>“%1” is %2</source>
        <translation>«&#xa0;%1&#xa0;» est %2</translation>
    </message>
    <message>
        <source>Used only when %1</source>
        <translation>Utilisé seulement si %1</translation>
    </message>
    <message>
        <source>“%1” has another value</source>
        <translation>«&#xa0;%1&#xa0;» a une autre valeur</translation>
    </message>
    <message>
        <source>Reset to the default: %1</source>
        <translation>Remettre la valeur par défaut&#xa0;: %1</translation>
    </message>
    <message>
        <source>Reset to the default</source>
        <translation>Remettre la valeur par défaut</translation>
    </message>
    <message>
        <source>Reset “%1”</source>
        <translation>Remettre «&#xa0;%1&#xa0;» par défaut</translation>
    </message>
</context>
<context>
    <name>corvanta::ReadLevelsEditor</name>
    <message>
        <source>Add a level inside the current one</source>
        <translation>Ajouter un niveau dans le niveau courant</translation>
    </message>
    <message>
        <source>The document itself</source>
        <translation>Le document lui-même</translation>
    </message>
    <message>
        <source>Every element</source>
        <translation>Chaque élément</translation>
    </message>
    <message>
        <source>Add a column</source>
        <translation>Ajouter une colonne</translation>
    </message>
    <message>
        <source>Remove the column</source>
        <translation>Retirer la colonne</translation>
    </message>
    <message>
        <source>(document)</source>
        <translation>(document)</translation>
    </message>
    <message>
        <source>%1 (columns: %2)</source>
        <translation>%1 (colonnes&#xa0;: %2)</translation>
    </message>
    <message>
        <source>No levels yet: fill them from the file, or add one</source>
        <translation>Aucun niveau&#xa0;: les remplir d&apos;après le fichier, ou en ajouter un</translation>
    </message>
</context>
<context>
    <name>corvanta::StructureEditor</name>
    <message>
        <source>(empty)</source>
        <translation>(vide)</translation>
    </message>
    <message>
        <source>Add an element</source>
        <translation>Ajouter un élément</translation>
    </message>
    <message>
        <source>Add an element inside the current one</source>
        <translation>Ajouter un élément dans l&apos;élément courant</translation>
    </message>
    <message>
        <source>Remove the element</source>
        <translation>Retirer l&apos;élément</translation>
    </message>
    <message>
        <source>Move the element up</source>
        <translation>Monter l&apos;élément</translation>
    </message>
    <message>
        <source>Move the element down</source>
        <translation>Descendre l&apos;élément</translation>
    </message>
    <message>
        <source>None: the button + adds one</source>
        <translation>Aucun&#xa0;: le bouton + en ajoute un</translation>
    </message>
</context>
<context>
    <name>corvanta::TaskRow</name>
    <message>
        <source>Stop</source>
        <translation>Arrêter</translation>
    </message>
    <message>
        <source>Stops the reading of the file; nothing is changed</source>
        <translation>Arrête la lecture du fichier&#xa0;; rien n&apos;est modifié</translation>
    </message>
    <message>
        <source>Stopped.</source>
        <translation>Arrêté.</translation>
    </message>
</context>
<context>
    <name>corvanta::TextWidthsEditor</name>
    <message>
        <source>Add a column</source>
        <translation>Ajouter une colonne</translation>
    </message>
    <message>
        <source>Remove the width</source>
        <translation>Retirer la largeur</translation>
    </message>
    <message>
        <source>automatic</source>
        <translation>automatique</translation>
    </message>
    <message>
        <source>none</source>
        <translation>aucune</translation>
    </message>
    <message>
        <source>the text column &apos;%1&apos; needs a width, because widths are not measured</source>
        <translation>la colonne de textes «&#xa0;%1&#xa0;» exige une largeur, car les largeurs ne sont pas mesurées</translation>
    </message>
    <message>
        <source>the input has no column &apos;%1&apos;</source>
        <translation>l&apos;entrée n&apos;a pas de colonne «&#xa0;%1&#xa0;»</translation>
    </message>
</context>
<context>
    <name>corvanta::Worker</name>
    <message>
        <source>There is not enough memory.</source>
        <translation>La mémoire est insuffisante.</translation>
    </message>
</context>
<context>
    <name>corvanta::WriteLevelsEditor</name>
    <message>
        <source>Add a level or an item after the current one</source>
        <translation>Ajouter un niveau ou un élément après l&apos;élément courant</translation>
    </message>
    <message>
        <source>Add an item to the current level</source>
        <translation>Ajouter un élément au niveau courant</translation>
    </message>
    <message>
        <source>Level %1</source>
        <translation>Niveau %1</translation>
    </message>
    <message>
        <source>Level %1: %2</source>
        <translation>Niveau %1&#xa0;: %2</translation>
    </message>
    <message>
        <source>Type %1</source>
        <translation>Type %1</translation>
    </message>
    <message>
        <source>There is no level &apos;%1&apos;</source>
        <translation>Il n&apos;y a pas de niveau «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>No column is chosen</source>
        <translation>Aucune colonne n&apos;est choisie</translation>
    </message>
    <message>
        <source>With sample values in place of the rows of the input</source>
        <translation>Avec des valeurs d&apos;exemple à la place des lignes de l&apos;entrée</translation>
    </message>
    <message>
        <source>With the first rows of the input</source>
        <translation>Avec les premières lignes de l&apos;entrée</translation>
    </message>
    <message>
        <source>No levels: each row is written as one element</source>
        <translation>Aucun niveau&#xa0;: chaque ligne s&apos;écrit comme un élément</translation>
    </message>
    <message>
        <source>Preview of the file:</source>
        <translation>Aperçu du fichier&#xa0;:</translation>
    </message>
    <message>
        <source>Preview of the file</source>
        <translation>Aperçu du fichier</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::CanvasView</name>
    <message>
        <source>Graph</source>
        <translation>Graphe</translation>
    </message>
    <message>
        <source>“%1” has no output.</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;a pas de sortie.</translation>
    </message>
    <message>
        <source>Add %1</source>
        <translation>Ajouter %1</translation>
    </message>
    <message>
        <source>Tab goes from action to action, arrows move them, Alt+arrows follow links, L draws a link, K goes from link to link, N from note to note.</source>
        <translation>Tab passe d’une action à l’autre, les flèches les déplacent, Alt+flèches suit les liens, L trace un lien, K passe d’un lien à l’autre, N d’une note à l’autre.</translation>
    </message>
    <message>
        <source>Note</source>
        <translation>Note</translation>
    </message>
    <message>
        <source>Text:</source>
        <translation>Texte&#xa0;:</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Modifier</translation>
    </message>
    <message>
        <source>Edit the current action or note</source>
        <translation>Modifier l’action courante ou la note</translation>
    </message>
    <message>
        <source>Add Action</source>
        <translation>Ajouter une action</translation>
    </message>
    <message>
        <source>Search an action to add, after the current one or into the selected link</source>
        <translation>Rechercher une action à ajouter, après l’action courante ou dans le lien sélectionné</translation>
    </message>
    <message>
        <source>Draw Link</source>
        <translation>Tracer un lien</translation>
    </message>
    <message>
        <source>Draw a link from the current action, or another end of the selected link</source>
        <translation>Tracer un lien depuis l’action courante, ou une autre extrémité du lien sélectionné</translation>
    </message>
    <message>
        <source>Next Link</source>
        <translation>Lien suivant</translation>
    </message>
    <message>
        <source>Go to the next link</source>
        <translation>Aller au lien suivant</translation>
    </message>
    <message>
        <source>Next Note</source>
        <translation>Note suivante</translation>
    </message>
    <message>
        <source>Go to the next note</source>
        <translation>Aller à la note suivante</translation>
    </message>
    <message>
        <source>Zoom In</source>
        <translation>Zoom avant</translation>
    </message>
    <message>
        <source>Show the graph larger</source>
        <translation>Agrandir le graphe</translation>
    </message>
    <message>
        <source>Zoom Out</source>
        <translation>Zoom arrière</translation>
    </message>
    <message>
        <source>Show the graph smaller</source>
        <translation>Réduire le graphe</translation>
    </message>
    <message>
        <source>Move Left</source>
        <translation>Déplacer à gauche</translation>
    </message>
    <message>
        <source>Go Left</source>
        <translation>Aller à gauche</translation>
    </message>
    <message>
        <source>Move Right</source>
        <translation>Déplacer à droite</translation>
    </message>
    <message>
        <source>Go Right</source>
        <translation>Aller à droite</translation>
    </message>
    <message>
        <source>Move Up</source>
        <translation>Déplacer vers le haut</translation>
    </message>
    <message>
        <source>Go Up</source>
        <translation>Aller vers le haut</translation>
    </message>
    <message>
        <source>Move Down</source>
        <translation>Déplacer vers le bas</translation>
    </message>
    <message>
        <source>Go Down</source>
        <translation>Aller vers le bas</translation>
    </message>
    <message>
        <source>Move the selected actions and notes; without any, scroll</source>
        <translation>Déplacer les actions et notes sélectionnées ; sans sélection, faire défiler</translation>
    </message>
    <message>
        <source>Go to the nearest action in this direction</source>
        <translation>Aller à l’action la plus proche dans cette direction</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::ColumnLayout</name>
    <message>
        <source>Hide the column</source>
        <translation>Masquer la colonne</translation>
    </message>
    <message>
        <source>Show all columns</source>
        <translation>Afficher toutes les colonnes</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::DataView</name>
    <message>
        <source>Search the rows</source>
        <translation>Chercher dans les lignes</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Chercher</translation>
    </message>
    <message>
        <source>Search the rows that are shown</source>
        <translation>Chercher dans les lignes affichées</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Suivant</translation>
    </message>
    <message>
        <source>Find the next cell with the text</source>
        <translation>Chercher la prochaine cellule avec le texte</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>Précédent</translation>
    </message>
    <message>
        <source>Find the previous cell with the text</source>
        <translation>Chercher la cellule précédente avec le texte</translation>
    </message>
    <message>
        <source>Copy as CSV</source>
        <translation>Copier en CSV</translation>
    </message>
    <message>
        <source>Reload</source>
        <translation>Relire</translation>
    </message>
    <message>
        <source>Read the rows again</source>
        <translation>Relire les lignes</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Arrêter</translation>
    </message>
    <message>
        <source>Stop reading rows</source>
        <translation>Arrêter la lecture des lignes</translation>
    </message>
    <message>
        <source>Columns</source>
        <translation>Colonnes</translation>
    </message>
    <message>
        <source>Show a summary of the columns</source>
        <translation>Afficher un résumé des colonnes</translation>
    </message>
    <message>
        <source>Rows</source>
        <translation>Lignes</translation>
    </message>
    <message>
        <source>More rows</source>
        <translation>Plus de lignes</translation>
    </message>
    <message>
        <source>Read more rows</source>
        <translation>Lire plus de lignes</translation>
    </message>
    <message>
        <source>Show %1 rows</source>
        <translation>Afficher %1 lignes</translation>
    </message>
    <message>
        <source>Reading… rows: %1</source>
        <translation>Lecture… lignes&#xa0;: %1</translation>
    </message>
    <message>
        <source>All rows: %1</source>
        <translation>Toutes les lignes&#xa0;: %1</translation>
    </message>
    <message>
        <source>The first %1 of %2 rows; the summary is of all rows</source>
        <translation>Les %1 premières lignes sur %2&#xa0;; le résumé porte sur toutes les lignes</translation>
    </message>
    <message>
        <source>The first %1 rows; there are more</source>
        <translation>Les %1 premières lignes&#xa0;; il y en a d&apos;autres</translation>
    </message>
    <message>
        <source>The memory for rows is used up; use an action to choose rows</source>
        <translation>La mémoire pour les lignes est épuisée&#xa0;; choisissez des lignes avec une action</translation>
    </message>
    <message>
        <source>Cells cut after %1 characters: %2</source>
        <translation>Cellules coupées après %1 caractères&#xa0;: %2</translation>
    </message>
    <message>
        <source>Not in the rows shown</source>
        <translation>Absent des lignes affichées</translation>
    </message>
    <message>
        <source>Not found</source>
        <translation>Introuvable</translation>
    </message>
    <message>
        <source>Copy all rows, or those with selected cells, as CSV</source>
        <translation>Copier toutes les lignes, ou celles des cellules sélectionnées, en CSV</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Copier</translation>
    </message>
    <message>
        <source>Copy the selected cell, or several as CSV</source>
        <translation>Copier la cellule sélectionnée, ou plusieurs en CSV</translation>
    </message>
    <message>
        <source>Pin of the rows</source>
        <translation>Entrée ou sortie des lignes</translation>
    </message>
    <message>
        <source>%1: output %2</source>
        <translation>%1 : sortie %2</translation>
    </message>
    <message>
        <source>%1: input %2</source>
        <translation>%1 : entrée %2</translation>
    </message>
    <message>
        <source>No file is written; the rows are those that reach &apos;%1&apos;</source>
        <translation>Aucun fichier n&apos;est écrit ; les lignes sont celles qui arrivent à «&#xa0;%1&#xa0;»</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::DocumentTab</name>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
    <message>
        <source>Another program has changed the file. Reading it again loses the unsaved changes.</source>
        <translation>Un autre programme a modifié le fichier. Le relire fait perdre les modifications non enregistrées.</translation>
    </message>
    <message>
        <source>Another program has changed the file.</source>
        <translation>Un autre programme a modifié le fichier.</translation>
    </message>
    <message>
        <source>Read it again</source>
        <translation>Le relire</translation>
    </message>
    <message>
        <source>Keep this version</source>
        <translation>Garder cette version</translation>
    </message>
    <message>
        <source>The file was removed or renamed. Save the graph to keep it.</source>
        <translation>Le fichier a été supprimé ou renommé. Enregistrez le graphe pour le garder.</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::GraphCommands</name>
    <message>
        <source>Save as SVG</source>
        <translation>Enregistrer en SVG</translation>
    </message>
    <message>
        <source>Drawings (*.svg)</source>
        <translation>Dessins (*.svg)</translation>
    </message>
    <message>
        <source>Save as PNG</source>
        <translation>Enregistrer en PNG</translation>
    </message>
    <message>
        <source>Images (*.png)</source>
        <translation>Images (*.png)</translation>
    </message>
    <message>
        <source>Save as PDF</source>
        <translation>Enregistrer en PDF</translation>
    </message>
    <message>
        <source>Documents (*.pdf)</source>
        <translation>Documents (*.pdf)</translation>
    </message>
    <message>
        <source>The clipboard has no actions.</source>
        <translation>Le presse-papiers ne contient pas d&apos;actions.</translation>
    </message>
    <message>
        <source>No other action can be linked to this one.</source>
        <translation>Aucune autre action ne peut être liée à celle-ci.</translation>
    </message>
    <message>
        <source>Link</source>
        <translation>Lier</translation>
    </message>
    <message>
        <source>New link:</source>
        <translation>Nouveau lien&#xa0;:</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
    <message>
        <source>Copied: %1</source>
        <translation>Copié&#xa0;: %1</translation>
    </message>
    <message>
        <source>Save a shell script</source>
        <translation>Enregistrer un script shell</translation>
    </message>
    <message>
        <source>Shell scripts (*.sh)</source>
        <translation>Scripts shell (*.sh)</translation>
    </message>
    <message>
        <source>The graph was saved. Copied: %1</source>
        <translation>Le graphe a été enregistré. Copié&#xa0;: %1</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::GraphDocument</name>
    <message>
        <source>Add %1</source>
        <translation>Ajouter %1</translation>
    </message>
    <message>
        <source>“%1” has no input.</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;a pas d&apos;entrée.</translation>
    </message>
    <message>
        <source>There is no such link.</source>
        <translation>Ce lien n&apos;existe pas.</translation>
    </message>
    <message>
        <source>“%1” has no input or no output.</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;a pas d&apos;entrée ou pas de sortie.</translation>
    </message>
    <message>
        <source>Insert %1 into a link</source>
        <translation>Insérer %1 dans un lien</translation>
    </message>
    <message>
        <source>No action reads files such as “%1”.</source>
        <translation>Aucune action ne lit les fichiers comme «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>Remove link</source>
        <translation>Supprimer le lien</translation>
    </message>
    <message>
        <source>Remove “%1”</source>
        <translation>Supprimer «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>Remove %1 actions</source>
        <translation>Supprimer %1 actions</translation>
    </message>
    <message>
        <source>Move “%1”</source>
        <translation>Déplacer «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>Move %1 actions</source>
        <translation>Déplacer %1 actions</translation>
    </message>
    <message>
        <source>Another action is named “%1”.</source>
        <translation>Une autre action s&apos;appelle «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>A name must not be empty or contain control characters.</source>
        <translation>Un nom ne doit pas être vide ni contenir de caractères de contrôle.</translation>
    </message>
    <message>
        <source>Rename “%1” to “%2”</source>
        <translation>Renommer «&#xa0;%1&#xa0;» en «&#xa0;%2&#xa0;»</translation>
    </message>
    <message>
        <source>Comment on “%1”</source>
        <translation>Commenter «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>Variable “%1”</source>
        <translation>Variable «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>Set %1</source>
        <translation>Régler %1</translation>
    </message>
    <message>
        <source>Keep the inputs of the old folder</source>
        <translation>Garder les entrées de l&apos;ancien dossier</translation>
    </message>
    <message>
        <source>Edit %1 of “%2”</source>
        <translation>Modifier %1 de «&#xa0;%2&#xa0;»</translation>
    </message>
    <message>
        <source>Paste “%1”</source>
        <translation>Coller «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>Paste %1 actions</source>
        <translation>Coller %1 actions</translation>
    </message>
    <message>
        <source>“%1” cannot be written: %2</source>
        <translation>«&#xa0;%1&#xa0;» ne peut pas être écrit&#xa0;: %2</translation>
    </message>
    <message>
        <source>Untitled</source>
        <translation>Sans titre</translation>
    </message>
    <message>
        <source>There is no such action.</source>
        <translation>Cette action n&apos;existe pas.</translation>
    </message>
    <message>
        <source>An action cannot get its own rows.</source>
        <translation>Une action ne peut pas recevoir ses propres lignes.</translation>
    </message>
    <message>
        <source>“%1” has no output.</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;a pas de sortie.</translation>
    </message>
    <message>
        <source>“%1” has no output %2.</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;a pas de sortie %2.</translation>
    </message>
    <message>
        <source>“%1” has no input %2.</source>
        <translation>«&#xa0;%1&#xa0;» n&apos;a pas d&apos;entrée %2.</translation>
    </message>
    <message>
        <source>The input already has a link from “%1”; an input takes one.</source>
        <translation>L&apos;entrée a déjà un lien depuis «&#xa0;%1&#xa0;»&#xa0;; une entrée n&apos;en accepte qu&apos;un.</translation>
    </message>
    <message>
        <source>“%1” already gets rows from “%2”; the links would form a loop.</source>
        <translation>«&#xa0;%1&#xa0;» reçoit déjà des lignes de «&#xa0;%2&#xa0;»&#xa0;; les liens formeraient une boucle.</translation>
    </message>
    <message>
        <source>Link “%1” to “%2”</source>
        <translation>Lier «&#xa0;%1&#xa0;» à «&#xa0;%2&#xa0;»</translation>
    </message>
    <message>
        <source>Re-route link to “%1”</source>
        <translation>Réorienter le lien vers «&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>“%1” already has links.</source>
        <translation>«&#xa0;%1&#xa0;» a déjà des liens.</translation>
    </message>
    <message>
        <source>Insert “%1” into a link</source>
        <translation>Insérer «&#xa0;%1&#xa0;» dans un lien</translation>
    </message>
    <message>
        <source>“%1” has changed while it was read.</source>
        <translation>«&#xa0;%1&#xa0;» a changé pendant sa lecture.</translation>
    </message>
    <message>
        <source>Remove note</source>
        <translation>Supprimer la note</translation>
    </message>
    <message>
        <source>Add note</source>
        <translation>Ajouter une note</translation>
    </message>
    <message>
        <source>Edit note</source>
        <translation>Modifier la note</translation>
    </message>
    <message>
        <source>Move note</source>
        <translation>Déplacer la note</translation>
    </message>
    <message>
        <source>Remove “%1” and join its neighbours</source>
        <translation>Supprimer «&#xa0;%1&#xa0;» et lier ses voisines</translation>
    </message>
    <message>
        <source>Remove %1 actions and join their neighbours</source>
        <translation>Supprimer %1 actions et lier leurs voisines</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::GraphRun</name>
    <message>
        <source>Error: cannot start &apos;%1&apos;: %2</source>
        <translation>Erreur&#xa0;: impossible de démarrer &apos;%1&apos;&#xa0;: %2</translation>
    </message>
    <message>
        <source>Error: the run ended unexpectedly (status %1). Files that it had not completed are unchanged, and so is the graph. Run it again.</source>
        <translation>Erreur&#xa0;: l&apos;exécution s&apos;est terminée de façon inattendue (état %1). Les fichiers qu&apos;elle n&apos;avait pas terminés sont inchangés, le graphe aussi. Exécutez-le de nouveau.</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::GraphScene</name>
    <message>
        <source>“%1”: a graph is exported as .svg, .png or .pdf.</source>
        <translation>«&#xa0;%1&#xa0;»&#xa0;: un graphe s&apos;exporte en .svg, .png ou .pdf.</translation>
    </message>
    <message>
        <source>Insert “%1” into a link</source>
        <translation>Insérer «&#xa0;%1&#xa0;» dans un lien</translation>
    </message>
    <message>
        <source>Link “%1” to input %2 of “%3”: Enter; another target: Tab</source>
        <translation>Lier «&#xa0;%1&#xa0;» à l&apos;entrée %2 de «&#xa0;%3&#xa0;»&#xa0;: Entrée&#xa0;; autre cible&#xa0;: Tab</translation>
    </message>
    <message>
        <source>No other action can get the rows of “%1”.</source>
        <translation>Aucune autre action ne peut recevoir les lignes de «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>It replaces the link from “%1”.</source>
        <translation>Il remplace le lien venant de «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>Move the selection</source>
        <translation>Déplacer la sélection</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::HelpView</name>
    <message>
        <source>Help</source>
        <translation>Aide</translation>
    </message>
    <message>
        <source>Select an action and press F1 to see its description here.</source>
        <translation>Sélectionnez une action et appuyez sur F1 pour voir sa description ici.</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::LinkItem</name>
    <message>
        <source>Link from “%1” to “%2”</source>
        <translation>Lien de «&#xa0;%1&#xa0;» vers «&#xa0;%2&#xa0;»</translation>
    </message>
    <message>
        <source>output %1 to input %2</source>
        <translation>sortie %1 vers entrée %2</translation>
    </message>
    <message>
        <source>%1, %2 rows</source>
        <translation>%1, %2 lignes</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::LogModel</name>
    <message>
        <source>Error</source>
        <translation>Erreur</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Avertissement</translation>
    </message>
    <message>
        <source>Info</source>
        <translation>Info</translation>
    </message>
    <message>
        <source>Diagnostic</source>
        <translation>Diagnostic</translation>
    </message>
    <message>
        <source>Severity</source>
        <translation>Gravité</translation>
    </message>
    <message>
        <source>Action</source>
        <translation>Action</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Message</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::LogPanel</name>
    <message>
        <source>Severity of the messages</source>
        <translation>Gravité des messages</translation>
    </message>
    <message>
        <source>All messages</source>
        <translation>Tous les messages</translation>
    </message>
    <message>
        <source>Errors, warnings, information</source>
        <translation>Erreurs, avertissements, informations</translation>
    </message>
    <message>
        <source>Errors and warnings</source>
        <translation>Erreurs et avertissements</translation>
    </message>
    <message>
        <source>Errors</source>
        <translation>Erreurs</translation>
    </message>
    <message>
        <source>Action of the messages</source>
        <translation>Action des messages</translation>
    </message>
    <message>
        <source>Text in the messages</source>
        <translation>Texte dans les messages</translation>
    </message>
    <message>
        <source>Search the messages</source>
        <translation>Chercher dans les messages</translation>
    </message>
    <message>
        <source>Messages of the run</source>
        <translation>Messages de l&apos;exécution</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Copier</translation>
    </message>
    <message>
        <source>All actions</source>
        <translation>Toutes les actions</translation>
    </message>
    <message>
        <source>Errors: %1</source>
        <translation>Erreurs&#xa0;: %1</translation>
    </message>
    <message>
        <source>Warnings: %1</source>
        <translation>Avertissements&#xa0;: %1</translation>
    </message>
    <message>
        <source>Hidden by the filter: %1</source>
        <translation>Masqués par le filtre&#xa0;: %1</translation>
    </message>
    <message>
        <source>Not kept: %1</source>
        <translation>Non conservés&#xa0;: %1</translation>
    </message>
    <message>
        <source>Copy the selected messages, or all that are shown</source>
        <translation>Copier les messages sélectionnés, ou tous ceux qui sont affichés</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::MainWindow</name>
    <message>
        <source>Palette</source>
        <translation>Palette</translation>
    </message>
    <message>
        <source>Outline</source>
        <translation>Plan</translation>
    </message>
    <message>
        <source>Properties</source>
        <translation>Propriétés</translation>
    </message>
    <message>
        <source>Variables</source>
        <translation>Variables</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Aide</translation>
    </message>
    <message>
        <source>Problems</source>
        <translation>Problèmes</translation>
    </message>
    <message>
        <source>Log</source>
        <translation>Journal</translation>
    </message>
    <message>
        <source>Data</source>
        <translation>Données</translation>
    </message>
    <message>
        <source>Tool bar</source>
        <translation>Barre d&apos;outils</translation>
    </message>
    <message>
        <source>Problems: %1</source>
        <translation>Problèmes&#xa0;: %1</translation>
    </message>
    <message>
        <source>Corvanta</source>
        <translation>Corvanta</translation>
    </message>
    <message>
        <source>&amp;Clear</source>
        <translation>&amp;Effacer</translation>
    </message>
    <message>
        <source>Corvanta %1, an editor of data-flow graphs.
Actions: %2</source>
        <translation>Corvanta %1, un éditeur de graphes de flux de données.
Actions&#xa0;: %2</translation>
    </message>
    <message>
        <source>About Corvanta</source>
        <translation>À propos de Corvanta</translation>
    </message>
    <message>
        <source>Canvas</source>
        <translation>Canevas</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::NodeItem</name>
    <message>
        <source>waiting</source>
        <translation>en attente</translation>
    </message>
    <message>
        <source>running</source>
        <translation>en cours</translation>
    </message>
    <message>
        <source>done</source>
        <translation>terminé</translation>
    </message>
    <message>
        <source>done with warnings</source>
        <translation>terminé avec des avertissements</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>échoué</translation>
    </message>
    <message>
        <source>stopped</source>
        <translation>arrêté</translation>
    </message>
    <message>
        <source>%1 (unknown action)</source>
        <translation>%1 (action inconnue)</translation>
    </message>
    <message>
        <source>gets rows from %1</source>
        <translation>reçoit les lignes de %1</translation>
    </message>
    <message>
        <source>sends rows to %1</source>
        <translation>envoie des lignes à %1</translation>
    </message>
    <message>
        <source>unknown: %1</source>
        <translation>inconnu&#xa0;: %1</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::Outline</name>
    <message>
        <source>Actions and links</source>
        <translation>Actions et liens</translation>
    </message>
    <message>
        <source>Action</source>
        <translation>Action</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Type</translation>
    </message>
    <message>
        <source>Comment</source>
        <translation>Commentaire</translation>
    </message>
    <message>
        <source>input %1 from %2</source>
        <translation>entrée %1 depuis %2</translation>
    </message>
    <message>
        <source>output %1 to %2</source>
        <translation>sortie %1 vers %2</translation>
    </message>
    <message>
        <source>Note</source>
        <translation>Note</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::Overview</name>
    <message>
        <source>Overview</source>
        <translation>Vue d&apos;ensemble</translation>
    </message>
    <message>
        <source>The whole graph; a click shows that part.</source>
        <translation>Tout le graphe&#xa0;; un clic affiche cette partie.</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::OverwriteQuestion</name>
    <message>
        <source>Overwrite files</source>
        <translation>Écraser des fichiers</translation>
    </message>
    <message>
        <source>The run replaces or changes existing files. Files: %1</source>
        <translation>L&apos;exécution remplace ou modifie des fichiers existants. Fichiers&#xa0;: %1</translation>
    </message>
    <message>
        <source>Run</source>
        <translation>Exécuter</translation>
    </message>
    <message>
        <source>Files in %1, with names from the rows</source>
        <translation>Des fichiers de %1, dont les noms viennent des lignes</translation>
    </message>
    <message>
        <source>The run may replace existing files.</source>
        <translation>L&apos;exécution peut remplacer des fichiers existants.</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::Palette</name>
    <message>
        <source>Search actions</source>
        <translation>Chercher des actions</translation>
    </message>
    <message>
        <source>Actions</source>
        <translation>Actions</translation>
    </message>
    <message>
        <source>Add to the graph</source>
        <translation>Ajouter au graphe</translation>
    </message>
    <message>
        <source>Favourite</source>
        <translation>Favori</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Aide</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::PaletteModel</name>
    <message>
        <source>Favourites</source>
        <translation>Favoris</translation>
    </message>
    <message>
        <source>Recent</source>
        <translation>Récentes</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::PinReader</name>
    <message>
        <source>The actions cannot be run.</source>
        <translation>Les actions ne peuvent pas être exécutées.</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is a pipe or a device: a run could not read its rows again.</source>
        <translation>«&#xa0;%1&#xa0;» est un tube ou un périphérique : une exécution ne pourrait pas relire ses lignes.</translation>
    </message>
    <message>
        <source>No rows reach this pin: it has no link, or its action is unknown.</source>
        <translation>Aucune ligne n&apos;arrive ici : l&apos;entrée n&apos;a pas de lien, ou son action est inconnue.</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::Preferences</name>
    <message>
        <source>&amp;Open the files of the last session</source>
        <translation>&amp;Ouvrir les fichiers de la dernière session</translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation>Préférences</translation>
    </message>
    <message>
        <source>As the desktop</source>
        <translation>Comme le bureau</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Clair</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Sombre</translation>
    </message>
    <message>
        <source>&amp;Colours:</source>
        <translation>&amp;Couleurs&#xa0;:</translation>
    </message>
    <message>
        <source>&amp;Text size:</source>
        <translation>&amp;Taille du texte&#xa0;:</translation>
    </message>
    <message>
        <source>&amp;Language:</source>
        <translation>&amp;Langue&#xa0;:</translation>
    </message>
    <message>
        <source>The next start uses another language.</source>
        <translation>Une autre langue est utilisée au prochain démarrage.</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::ProblemList</name>
    <message>
        <source>Problems</source>
        <translation>Problèmes</translation>
    </message>
    <message>
        <source>Action</source>
        <translation>Action</translation>
    </message>
    <message>
        <source>Problem</source>
        <translation>Problème</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::PropertyView</name>
    <message>
        <source>Select an action to see its parameters.</source>
        <translation>Sélectionnez une action pour voir ses paramètres.</translation>
    </message>
    <message>
        <source>Name:</source>
        <translation>Nom&#xa0;:</translation>
    </message>
    <message>
        <source>Comment:</source>
        <translation>Commentaire&#xa0;:</translation>
    </message>
    <message>
        <source>The action has no parameters to edit.</source>
        <translation>L&apos;action n&apos;a pas de paramètres à modifier.</translation>
    </message>
    <message>
        <source>No module has the action &quot;%1&quot;.</source>
        <translation>Aucun module n&apos;a l&apos;action «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>Actions selected: %1. Actions of one type can be changed together.</source>
        <translation>Actions sélectionnées&#xa0;: %1. Des actions d&apos;un même type peuvent être modifiées ensemble.</translation>
    </message>
    <message>
        <source>%1: each change applies to all %2 actions.</source>
        <translation>%1&#xa0;: chaque modification s&apos;applique aux %2 actions.</translation>
    </message>
    <message>
        <source>different values</source>
        <translation>valeurs différentes</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::QuickAdd</name>
    <message>
        <source>Search actions</source>
        <translation>Chercher des actions</translation>
    </message>
    <message>
        <source>Actions</source>
        <translation>Actions</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::RunController</name>
    <message>
        <source>%1 ms</source>
        <translation>%1 ms</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>Preparing…</source>
        <translation>Préparation…</translation>
    </message>
    <message>
        <source>Running…</source>
        <translation>En cours…</translation>
    </message>
    <message>
        <source>Stopping…</source>
        <translation>Arrêt…</translation>
    </message>
    <message>
        <source>Not run</source>
        <translation>Non exécuté</translation>
    </message>
    <message>
        <source>Done with warnings in %1</source>
        <translation>Terminé avec des avertissements en %1</translation>
    </message>
    <message>
        <source>Done in %1</source>
        <translation>Terminé en %1</translation>
    </message>
    <message>
        <source>Failed after %1</source>
        <translation>Échec après %1</translation>
    </message>
    <message>
        <source>Stopped after %1</source>
        <translation>Arrêté après %1</translation>
    </message>
    <message>
        <source>Ended unexpectedly after %1</source>
        <translation>Fin inattendue après %1</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::RunStatus</name>
    <message>
        <source>State of the run</source>
        <translation>État de l&apos;exécution</translation>
    </message>
    <message>
        <source>Progress of the run</source>
        <translation>Avancement de l&apos;exécution</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::ShortcutEditor</name>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Retirer</translation>
    </message>
    <message>
        <source>&amp;Default</source>
        <translation>&amp;Défaut</translation>
    </message>
    <message>
        <source>Shortcuts</source>
        <translation>Raccourcis</translation>
    </message>
    <message>
        <source>Commands and their shortcuts</source>
        <translation>Commandes et leurs raccourcis</translation>
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
        <source>Meaning</source>
        <translation>Signification</translation>
    </message>
    <message>
        <source>Search commands</source>
        <translation>Chercher des commandes</translation>
    </message>
    <message>
        <source>New shortcut</source>
        <translation>Nouveau raccourci</translation>
    </message>
    <message>
        <source>%1 is the shortcut of &quot;%2&quot;</source>
        <translation>%1 est le raccourci de «&#xa0;%2&#xa0;»</translation>
    </message>
    <message>
        <source>Canvas: Next Action</source>
        <translation>Canevas : Action suivante</translation>
    </message>
    <message>
        <source>Go to the next action, and out of the canvas after the last; with Shift backwards</source>
        <translation>Aller à l’action suivante, et hors du canevas après la dernière ; avec Maj en arrière</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::StartPage</name>
    <message>
        <source>Corvanta</source>
        <translation>Corvanta</translation>
    </message>
    <message>
        <source>Re&amp;cent graphs</source>
        <translation>Graphes ré&amp;cents</translation>
    </message>
    <message>
        <source>E&amp;xamples</source>
        <translation>Exe&amp;mples</translation>
    </message>
    <message>
        <source>&amp;New graph</source>
        <translation>&amp;Nouveau graphe</translation>
    </message>
    <message>
        <source>&amp;Open a graph...</source>
        <translation>&amp;Ouvrir un graphe...</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::SummaryModel</name>
    <message>
        <source>over %1</source>
        <translation>plus de %1</translation>
    </message>
    <message>
        <source>Column</source>
        <translation>Colonne</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Type</translation>
    </message>
    <message>
        <source>Missing</source>
        <translation>Manquants</translation>
    </message>
    <message>
        <source>Distinct</source>
        <translation>Distincts</translation>
    </message>
    <message>
        <source>Minimum</source>
        <translation>Minimum</translation>
    </message>
    <message>
        <source>Maximum</source>
        <translation>Maximum</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::SummaryPanel</name>
    <message>
        <source>Columns</source>
        <translation>Colonnes</translation>
    </message>
    <message>
        <source>Summarize all rows</source>
        <translation>Résumer toutes les lignes</translation>
    </message>
    <message>
        <source>Read the whole table for the counts and ranges</source>
        <translation>Lire toute la table pour les nombres et les étendues</translation>
    </message>
    <message>
        <source>Move left</source>
        <translation>Vers la gauche</translation>
    </message>
    <message>
        <source>Move the column to the left</source>
        <translation>Déplacer la colonne vers la gauche</translation>
    </message>
    <message>
        <source>Move right</source>
        <translation>Vers la droite</translation>
    </message>
    <message>
        <source>Move the column to the right</source>
        <translation>Déplacer la colonne vers la droite</translation>
    </message>
    <message>
        <source>Show all columns</source>
        <translation>Afficher toutes les colonnes</translation>
    </message>
    <message>
        <source>Show the hidden columns again</source>
        <translation>Afficher de nouveau les colonnes masquées</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::VariableTable</name>
    <message>
        <source>Variables of the graph</source>
        <translation>Variables du graphe</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nom</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Valeur</translation>
    </message>
    <message>
        <source>${NAME} in a file name or text is replaced by the value.</source>
        <translation>${NAME} dans un nom de fichier ou un texte est remplacé par la valeur.</translation>
    </message>
    <message>
        <source>Remove the variable</source>
        <translation>Supprimer la variable</translation>
    </message>
    <message>
        <source>A name must not contain braces.</source>
        <translation>Un nom ne doit pas contenir d&apos;accolades.</translation>
    </message>
    <message>
        <source>A variable needs a name.</source>
        <translation>Une variable doit avoir un nom.</translation>
    </message>
    <message>
        <source>There is a variable of this name already.</source>
        <translation>Il y a déjà une variable de ce nom.</translation>
    </message>
    <message>
        <source>Set variable %1</source>
        <translation>Définir la variable %1</translation>
    </message>
    <message>
        <source>Remove the selected variable of the graph</source>
        <translation>Supprimer la variable sélectionnée du graphe</translation>
    </message>
</context>
<context>
    <name>corvanta::studio::Workspace</name>
    <message>
        <source>Columns</source>
        <translation>Colonnes</translation>
    </message>
    <message>
        <source>Graphs (*.graph);;All files (*)</source>
        <translation>Graphes (*.graph);;Tous les fichiers (*)</translation>
    </message>
    <message>
        <source>Open graphs</source>
        <translation>Ouvrir des graphes</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Accueil</translation>
    </message>
    <message>
        <source>Save the graph</source>
        <translation>Enregistrer le graphe</translation>
    </message>
    <message>
        <source>Read &quot;%1&quot; again and lose the unsaved changes?</source>
        <translation>Relire «&#xa0;%1&#xa0;» et perdre les modifications non enregistrées&#xa0;?</translation>
    </message>
    <message>
        <source>Reload</source>
        <translation>Relire</translation>
    </message>
    <message>
        <source>Unsaved changes</source>
        <translation>Modifications non enregistrées</translation>
    </message>
    <message>
        <source>Save the changes of &quot;%1&quot;?</source>
        <translation>Enregistrer les modifications de «&#xa0;%1&#xa0;»&#xa0;?</translation>
    </message>
    <message>
        <source>Untitled</source>
        <translation>Sans titre</translation>
    </message>
    <message>
        <source>Recovery</source>
        <translation>Récupération</translation>
    </message>
    <message>
        <source>The last session ended unexpectedly. Recover the unsaved changes?</source>
        <translation>La dernière session s&apos;est terminée de façon inattendue. Récupérer les modifications non enregistrées&#xa0;?</translation>
    </message>
    <message>
        <source>&amp;Recover</source>
        <translation>&amp;Récupérer</translation>
    </message>
    <message>
        <source>&amp;Discard</source>
        <translation>&amp;Abandonner</translation>
    </message>
    <message>
        <source>&amp;Later</source>
        <translation>&amp;Plus tard</translation>
    </message>
    <message>
        <source>Corvanta</source>
        <translation>Corvanta</translation>
    </message>
    <message>
        <source>Another program has changed &quot;%1&quot;. Save this version over it?</source>
        <translation>Un autre programme a modifié «&#xa0;%1&#xa0;». Enregistrer cette version à sa place&#xa0;?</translation>
    </message>
    <message>
        <source>Run in progress</source>
        <translation>Exécution en cours</translation>
    </message>
    <message>
        <source>Close &quot;%1&quot; and stop its run?</source>
        <translation>Fermer «&#xa0;%1&#xa0;» et arrêter son exécution&#xa0;?</translation>
    </message>
</context>
</TS>

#include "reseau_familles.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <random>
#include <sstream>
#include <utility>

namespace familles {

namespace {

/// Builds a net by place names: "a b*2" on each side.
class Chantier {
public:
    void tr(const std::string& pre, const std::string& post) {
        net_.ajouter("t" + std::to_string(net_.transitions.size()), cote(pre), cote(post));
    }
    void pl(const std::string& nom, Reseau::Compte jetons) { net_.initial[place(nom)] = jetons; }
    Reseau::Net finir() { return std::move(net_); }

private:
    std::uint32_t place(const std::string& nom) {
        const auto [i, neuve] = numeros_.try_emplace(nom, static_cast<std::uint32_t>(net_.places.size()));
        if (neuve) {
            net_.places.push_back(nom);
            net_.initial.push_back(0);
        }
        return i->second;
    }
    Reseau::Creux cote(const std::string& texte) {
        Reseau::Creux v;
        std::istringstream mots(texte);
        for (std::string mot; mots >> mot;) {
            const std::size_t etoile = mot.find('*');
            v.push_back(
                {place(mot.substr(0, etoile)), etoile == std::string::npos ? 1 : std::stoll(mot.substr(etoile + 1))});
        }
        return v;
    }

    Reseau::Net net_;
    std::map<std::string, std::uint32_t> numeros_;
};

std::string nom(const char* lettre, int i) { return lettre + std::to_string(i); }

using Hasard = std::mt19937_64;
int tirer(Hasard& h, int n) { return static_cast<int>(h() % static_cast<std::uint64_t>(n)); }

/// G. Ciardo, M. Tilgner, "On the use of Kronecker operators for the solution of generalized stochastic Petri nets"
/// (1996).
Reseau::Net kanban(int n) {
    Chantier c;
    for (int i = 1; i <= 4; ++i) {
        c.tr(nom("m", i), nom("rework", i));
        c.tr(nom("rework", i), nom("m", i));
        c.tr(nom("m", i), nom("out", i));
        c.pl(nom("k", i), n);
    }
    c.tr("k1", "m1");
    c.tr("out1 k2 k3", "k1 m2 m3");
    c.tr("out2 out3 k4", "k2 k3 m4");
    c.tr("out4", "k4");
    return c.finir();
}

/// G. Ciardo, K. Trivedi, "A decomposition approach for stochastic reward net models" (1993).
Reseau::Net fms(int n) {
    Chantier c;
    c.tr("P1", "P1wM1");
    c.tr("P1wM1 M1", "P1M1");
    c.tr("P1M1", "P1d M1");
    c.tr("P1d", "P1s");
    c.tr("P1d", "P1wP2");
    c.tr("P2", "P2wM2");
    c.tr("P2wM2 M2", "P2M2");
    c.tr("P2M2", "P2d M2");
    c.tr("P2d", "P2s");
    c.tr("P2d", "P2wP1");
    c.tr("P1wP2 P2wP1", "P12");
    c.tr("P12", "P12wM3");
    c.tr("P12wM3 M3", "P12M3");
    c.tr("P12M3", "P12s M3");
    c.tr("P3", "P3wM2");
    c.tr("P3wM2 M2", "P3M2");
    c.tr("P3M2", "P3s M2");
    c.tr("P1s", "P1");
    c.tr("P2s", "P2");
    c.tr("P3s", "P3");
    c.tr("P12s", "P1 P2");
    for (int i = 1; i <= 3; ++i) {
        c.pl(nom("P", i), n);
        c.pl(nom("M", i), i == 1 ? 3 : i == 2 ? 1 : 2);
    }
    return c.finir();
}

/// n locks taken in order by threads that are created without end.
Reseau::Net exclusion(int n) {
    Chantier c;
    c.tr("", "hors0");
    for (int i = 0; i < n; ++i) {
        c.tr(nom("hors", i) + " " + nom("verrou", i), nom("dans", i));
        c.tr(nom("dans", i), nom("hors", i + 1) + " " + nom("verrou", i));
        c.tr(nom("dans", i), nom("hors", i) + " " + nom("verrou", i));
        c.pl(nom("verrou", i), 1);
    }
    c.tr(nom("hors", n), "hors0");
    return c.finir();
}

/// n processes read together or write alone.
Reseau::Net lecteurs(int n) {
    Chantier c;
    c.tr("repos", "veutLire");
    c.tr("repos", "veutEcrire");
    c.tr("veutLire permis", "lit");
    c.tr("lit", "repos permis");
    c.tr("veutEcrire permis*" + std::to_string(n), "ecrit");
    c.tr("ecrit", "repos permis*" + std::to_string(n));
    c.pl("repos", 2 * n);
    c.pl("permis", n);
    return c.finir();
}

/// n by n processors that hand jobs to their neighbours; those of the first column get them from outside.
Reseau::Net maille(int n) {
    Chantier c;
    for (int x = 0; x < n; ++x)
        for (int y = 0; y < n; ++y) {
            const int i = x * n + y;
            c.tr(nom("job", i) + " " + nom("libre", i), nom("occupe", i));
            c.tr(nom("occupe", i), nom("fini", i) + " " + nom("libre", i));
            for (const int j : {x + 1 < n ? i + n : -1, y + 1 < n ? i + 1 : -1})
                if (j >= 0) c.tr(nom("fini", i) + " " + nom("place", j), nom("job", j) + " " + nom("place", i));
            if (y == 0) c.tr(nom("place", i), nom("job", i));
            if (x == n - 1 || y == n - 1) c.tr(nom("fini", i), nom("place", i));
            c.pl(nom("libre", i), 1);
            c.pl(nom("place", i), 2);
        }
    return c.finir();
}

/// A. Brams, "Réseaux de Petri: théorie et pratique" (1983): n cabins, n baskets, bathers from outside.
Reseau::Net piscine(int n) {
    Chantier c;
    c.tr("", "entre");
    c.tr("entre cabine", "attend");
    c.tr("attend panier", "deshabille");
    c.tr("deshabille", "baigne cabine");
    c.tr("baigne cabine", "rhabille");
    c.tr("rhabille", "sort panier");
    c.tr("sort", "cabine");
    c.pl("cabine", n);
    c.pl("panier", n);
    return c.finir();
}

/// A producer, n unbounded buffers in a row, a consumer that takes two at a time.
Reseau::Net tampons(int n) {
    Chantier c;
    c.tr("pret", "pose");
    c.tr("pose", "pret tampon0");
    for (int i = 1; i < n; ++i)
        c.tr(nom("tampon", i - 1) + " " + nom("porteur", i), nom("tampon", i) + " " + nom("porteur", i));
    c.tr(nom("tampon", n - 1) + "*2 faim", "repu");
    c.tr("repu", "faim");
    c.pl("pret", 1);
    c.pl("faim", 1);
    for (int i = 1; i < n; ++i) c.pl(nom("porteur", i), 1);
    return c.finir();
}

/// Counts to 2^n: bit i set and all lower bits set carry into bit i + 1; every step is tallied with the weight of its
/// bit.
Reseau::Net compteur(int n) {
    Chantier c;
    std::string basPoses;
    std::string basNuls;
    for (int i = 0; i < n; ++i) {
        c.tr(nom("nul", i) + basPoses, nom("pose", i) + basNuls + " pas");
        c.tr("pas*" + std::to_string(1 << (i % 20)) + " " + nom("pose", i), nom("nul", i) + " fin");
        basPoses += " " + nom("pose", i);
        basNuls += " " + nom("nul", i);
        c.pl(nom("nul", i), 1);
    }
    return c.finir();
}

template <int GRAINE>
Reseau::Net hasard(int n) {
    return auHasard(n, GRAINE);
}

/// A program of n statements over five shared bits, run by threads that are created without end, as model checkers of
/// such programs abstract it: a statement is a transition for each valuation of the bits that lets it pass.
Reseau::Net programme(int n) {
    constexpr int BITS = 5;
    Hasard h(static_cast<std::uint64_t>(n));
    Chantier c;
    c.tr("", "l0");
    for (int i = 0; i < n; ++i) {
        const std::string ici = nom("l", i);
        const std::string suite = nom("l", (i + 1) % n);
        const int bit = 1 << tirer(h, BITS);
        const int valeur = tirer(h, 2) * bit;
        const int saut = tirer(h, n);
        switch (tirer(h, 4)) {
            case 0:  // nothing that the bits tell
                c.tr(ici, suite);
                break;
            case 1:  // a jump when the bit has the value
                for (int v = 0; v < 1 << BITS; ++v)
                    c.tr(ici + " " + nom("v", v), ((v & bit) == valeur ? nom("l", saut) : suite) + " " + nom("v", v));
                break;
            default:  // an assignment
                for (int v = 0; v < 1 << BITS; ++v)
                    c.tr(ici + " " + nom("v", v), suite + " " + nom("v", (v & ~bit) | valeur));
        }
    }
    c.pl("v0", 1);
    return c.finir();
}

/// A program of n statements over three shared and four local bits, run by threads that are created without end: a
/// statement is a transition for each valuation of the bits that it reads or writes.
Reseau::Net programmeLocal(int n) {
    constexpr int PARTAGES = 8;  // valuations
    constexpr int LOCAUX = 16;
    Hasard h(static_cast<std::uint64_t>(n));
    Chantier c;
    const auto lieu = [n](int i, int locaux) { return nom("l", i % n) + "_" + std::to_string(locaux); };
    const auto poser = [](int bits, int bit, bool valeur) { return valeur ? bits | bit : bits & ~bit; };
    c.tr("", lieu(0, 0));
    for (int i = 0; i < n; ++i) {
        const int bit = 1 << tirer(h, 3);
        const int local = 1 << tirer(h, 4);
        const int saut = tirer(h, n);
        const int genre = tirer(h, 8);
        for (int x = 0; x < LOCAUX; ++x) {
            if (genre == 0) c.tr(lieu(i, x), lieu(i + 1, x));                       // nothing that the bits tell
            if (genre == 1) c.tr(lieu(i, x), lieu(i + 1, poser(x, local, false)));  // a local bit becomes any
            if (genre == 1) c.tr(lieu(i, x), lieu(i + 1, poser(x, local, true)));
            for (int v = 0; v < PARTAGES && genre > 1; ++v) {
                std::string suite = lieu(i + 1, x);
                int w = v;
                if (genre == 2) w = poser(v, bit, true);
                if (genre == 3) w = poser(v, bit, false);
                if (genre == 4 && (v & bit) != 0) suite = lieu(saut, x);
                if (genre == 5) suite = lieu(i + 1, poser(x, local, (v & bit) != 0));
                if (genre == 6) w = poser(v, bit, (x & local) != 0);
                if (genre == 7 && (v & bit) != 0) continue;  // a lock
                if (genre == 7) w = v | bit;
                c.tr(nom("v", v) + " " + lieu(i, x), nom("v", w) + " " + suite);
            }
        }
    }
    c.pl("v0", 1);
    return c.finir();
}

/// A loop of n locations that posts calls of n / 10 kinds and serves them in any order, each by a way of its own.
Reseau::Net appels(int n) {
    Hasard h(static_cast<std::uint64_t>(n));
    Chantier c;
    const int genres = n / 10;
    for (int i = 0; i < n; ++i) {
        const std::string suite = nom("c", (i + 1) % n);
        c.tr(nom("c", i), suite + (tirer(h, 2) == 0 ? " " + nom("appel", tirer(h, genres)) : ""));
        for (int k = tirer(h, 3); k > 0; --k)
            c.tr(nom("c", i) + " " + nom("appel", tirer(h, genres)), nom("c", tirer(h, n)));
    }
    c.pl("c0", 1);
    return c.finir();
}

/// n processes that pass messages on through 2 n channels without bound. Each message carries one of 3 n colours, which
/// says where it has been, and who passes it on changes the colour in a way of its own; some processes send of
/// themselves.
Reseau::Net messages(int n) {
    constexpr int ETATS = 10;
    constexpr int GESTES = 40;  // of a process
    Hasard h(static_cast<std::uint64_t>(n));
    Chantier c;
    const int canaux = 2 * n;
    const int couleurs = 3 * n;
    const auto message = [](int canal, int couleur) { return nom("canal", canal) + nom("couleur", couleur); };
    for (int p = 0; p < n; ++p) {
        const auto etat = [&](int i) { return nom("p", p) + nom("e", i); };
        std::vector<int> teinture;
        for (int d = 0; d < couleurs; ++d) teinture.push_back(tirer(h, couleurs));
        for (int geste = 0; geste < GESTES; ++geste) {
            const std::string de = etat(geste == 0 ? 0 : tirer(h, ETATS));
            const std::string vers = etat(tirer(h, ETATS));
            const int genre = tirer(h, 10);
            const int recu = tirer(h, canaux);
            const int envoye = tirer(h, canaux);
            if (genre == 0) {
                c.tr(de, vers + " " + message(envoye, teinture[0]));
            } else if (genre < 3) {
                c.tr(de, vers);
            } else {
                for (int d = 0; d < couleurs; ++d)
                    c.tr(de + " " + message(recu, d),
                         vers + " " + message(envoye, teinture[static_cast<std::size_t>(d)]));
            }
        }
        c.pl(etat(0), 1);
    }
    return c.finir();
}

/// n caches of one line each, modified, exclusive, shared or invalid; who reads or writes takes the bus and asks the
/// others one after the other.
Reseau::Net caches(int n) {
    Chantier c;
    for (int i = 0; i < n; ++i) {
        for (const char* acces : {"lit", "ecrit"}) {
            const bool lit = acces == std::string("lit");
            std::string ici = "bus";
            for (int j = 0; j < n; ++j) {
                if (j == i) continue;
                const std::string suite = nom(acces, i) + "apres" + std::to_string(j);
                for (const char* etat : {"M", "E", "S", "I"})
                    c.tr(ici + " " + nom(etat, j), suite + " " + nom(lit && etat != std::string("I") ? "S" : "I", j));
                ici = suite;
            }
            for (const char* etat : {"S", "I"}) c.tr(ici + " " + nom(etat, i), "bus " + nom(lit ? "S" : "E", i));
        }
        c.tr(nom("E", i), nom("M", i));
        c.pl(nom("I", i), 1);
    }
    c.pl("bus", 1);
    return c.finir();
}

/// n philosophers at a table, who take the left fork first. E. W. Dijkstra, "Hierarchical ordering of sequential
/// processes" (1971).
Reseau::Net philosophes(int n) {
    Chantier c;
    for (int i = 0; i < n; ++i) {
        const std::string gauche = nom("fourchette", i);
        const std::string droite = nom("fourchette", (i + 1) % n);
        c.tr(nom("pense", i) + " " + gauche, nom("attend", i));
        c.tr(nom("attend", i) + " " + droite, nom("mange", i));
        c.tr(nom("mange", i), nom("pense", i) + " " + gauche + " " + droite);
        c.pl(nom("pense", i), 1);
        c.pl(gauche, 1);
    }
    return c.finir();
}

/// n stations in a ring; the one that has the token works, if it wants to, and hands it on.
Reseau::Net jetonTournant(int n) {
    Chantier c;
    for (int i = 0; i < n; ++i) {
        const std::string repos = nom("repos", i);
        const std::string suivant = nom("jeton", (i + 1) % n);
        c.tr(repos, nom("veut", i));
        c.tr(nom("veut", i) + " " + nom("jeton", i), nom("travaille", i));
        c.tr(nom("travaille", i), repos + " " + suivant);
        c.tr(repos + " " + nom("jeton", i), repos + " " + suivant);
        c.pl(repos, 1);
    }
    c.pl("jeton0", 1);
    return c.finir();
}

/// n buffers of three places each in a row.
Reseau::Net chaine(int n) {
    Chantier c;
    for (int i = 0; i < n; ++i) {
        c.tr(i == 0 ? "vide0" : nom("plein", i - 1) + " " + nom("vide", i),
             i == 0 ? "plein0" : nom("vide", i - 1) + " " + nom("plein", i));
        c.pl(nom("vide", i), 3);
    }
    c.tr(nom("plein", n - 1), nom("vide", n - 1));
    return c.finir();
}

/// n machines in a tree, each of which takes what its two suppliers have made; the last one's products are counted.
Reseau::Net assemblage(int n) {
    Chantier c;
    for (int i = 0; i < n; ++i) {
        std::string pris = nom("libre", i);
        std::string rendu = nom("travaille", i);
        for (const int j : {2 * i + 1, 2 * i + 2})
            if (j < n) {
                pris += " " + nom("produit", j);
                rendu += " " + nom("libre", j);
            }
        c.tr(pris, rendu);
        c.tr(nom("travaille", i), nom("produit", i));
        c.pl(nom("libre", i), 1);
    }
    c.tr("produit0", "libre0 livre");
    return c.finir();
}

/// A model whose rules put later kinds, with `jetons` molecules of each kind that is present at the start.
template <int NOEUDS, int MOLECULES>
Reseau::Net modele(int jetons) {
    return modeleAuHasard(Genre::ETAGE, NOEUDS, MOLECULES, 100 * NOEUDS + MOLECULES, jetons);
}

}  // namespace

Reseau::Net auHasard(int n, int graine) {
    Hasard h(static_cast<std::uint64_t>(n + 1000 * graine));
    Chantier c;
    const int transitions = 30 + (n - 15) * 70 / 80;
    for (int p = 0; p < n; ++p) c.pl(nom("p", p), tirer(h, 4) == 0 ? 1 : 0);
    for (int t = 0; t < transitions; ++t) {
        std::string pre;
        std::string post;
        for (int a = 1 + tirer(h, 2); a > 0; --a) pre += " " + nom("p", tirer(h, n));
        for (int a = tirer(h, 3); a > 0; --a) post += " " + nom("p", tirer(h, n)) + (tirer(h, 10) == 0 ? "*2" : "");
        c.tr(pre, post);
    }
    return c.finir();
}

Reseau::Net dense(int graine) {
    Hasard h(static_cast<std::uint64_t>(graine));
    Chantier c;
    const int places = 50 + tirer(h, 51);
    const int transitions = 50 + tirer(h, 51);
    for (int p = 0; p < places; ++p) c.pl(nom("p", p), tirer(h, 4) == 0 ? 1 : 0);
    for (int t = 0; t < transitions; ++t) {
        std::string pre;
        std::string post;
        const int arcs = 2 + tirer(h, 9);
        const int pris = 1 + tirer(h, arcs - 1);
        for (int a = 0; a < arcs; ++a) (a < pris ? pre : post) += " " + nom("p", tirer(h, places));
        c.tr(pre, post);
    }
    return c.finir();
}

/// Two arcs leave each node, one of them to the next; two in three carry a rule that takes one or two kinds of
/// molecules and puts up to two. One or two nodes are initial, with each kind present at odds of one half: `jetons` of
/// it, or else 1 to 10^9, small numbers as likely as large ones.
Reseau::Net modeleAuHasard(Genre genre, int noeuds, int molecules, std::uint64_t graine,
                           std::optional<Reseau::Compte> jetons) {
    Hasard h(graine);
    Chantier c;
    const auto regle = [&](std::string& pre, std::string& post) {
        int pris = 0;
        int dernier = 0;
        for (int k = 1 + tirer(h, 2); k > 0; --k) {
            const int m = tirer(h, genre == Genre::ETAGE ? molecules - 1 : molecules);
            const int poids = 1 + tirer(h, 3);
            pre += " " + nom("m", m) + "*" + std::to_string(poids);
            pris += poids;
            dernier = std::max(dernier, m);
        }
        for (int k = tirer(h, 3); k > 0; --k) {
            const int premier = genre == Genre::ETAGE ? dernier + 1 : 0;
            const int m = premier + tirer(h, molecules - premier);
            const int poids = 1 + tirer(h, 3);
            if (genre == Genre::ECONOME && poids > pris) break;
            pris -= poids;
            post += " " + nom("m", m) + "*" + std::to_string(poids);
        }
    };
    for (int i = 0; i < noeuds; ++i)
        for (const bool suivant : {true, false}) {
            std::string pre = nom("q", i);
            std::string post = nom("q", suivant ? (i + 1) % noeuds : tirer(h, noeuds));
            if (tirer(h, 3) < (suivant ? 1 : 2)) regle(pre, post);
            c.tr(pre, post);
        }
    for (int initiaux = 1 + tirer(h, 2); initiaux > 0; --initiaux) {
        std::string marquage = nom("q", tirer(h, noeuds));
        for (int m = 0; m < molecules; ++m) {
            if (tirer(h, 2) == 0) continue;
            Reseau::Compte tires = 1 + tirer(h, 9);
            for (int chiffres = tirer(h, 9); chiffres > 0; --chiffres) tires = tires * 10 + tirer(h, 10);
            marquage += " " + nom("m", m) + "*" + std::to_string(jetons.value_or(tires));
        }
        c.tr("depart", marquage);
    }
    c.pl("depart", 1);
    return c.finir();
}

void ecrire(std::ostream& out, const Reseau::Net& net) {
    const auto ecrireCote = [&](const Reseau::Creux& v) {
        for (const Reseau::Poids& p : v) out << ' ' << net.places[p.place] << '*' << p.compte;
    };
    for (const Reseau::Transition& t : net.transitions) {
        out << "tr " << t.nom;
        ecrireCote(t.pre);
        out << " ->";
        ecrireCote(t.post);
        out << '\n';
    }
    for (std::size_t p = 0; p < net.places.size(); ++p)
        out << "pl " << net.places[p] << " (" << net.initial[p] << ")\n";
}

const std::vector<Famille>& toutes() {
    const std::vector<int> jetons{1, 1000, 1'000'000, 1'000'000'000};
    static const std::vector<Famille> liste{
        {"kanban", kanban, {1, 2, 3, 4, 100, 1'000'000}},
        {"fms", fms, {1, 2, 3, 100, 1'000'000}},
        {"mutual exclusion", exclusion, {2, 5, 10, 100, 1000}},
        {"readers-writers", lecteurs, {2, 10, 50, 1'000'000}},
        {"mesh", maille, {2, 3, 4, 10, 45}},
        {"swimming pool", piscine, {1, 5, 20, 100'000}},
        {"buffers", tampons, {5, 20, 100, 1000}},
        {"n-bit counter", compteur, {2, 4, 8, 12}},
        {"threads", programme, {10, 100, 1000}},
        {"threads, locals", programmeLocal, {10, 50, 250}},
        {"calls", appels, {100, 1000}},
        {"messages", messages, {3, 10}},
        {"caches", caches, {2, 4, 8}},
        {"philosophers", philosophes, {2, 10, 1000}},
        {"token ring", jetonTournant, {2, 10, 1000}},
        {"pipeline", chaine, {2, 10, 1000}},
        {"assembly", assemblage, {3, 15, 1023}},
        {"random", hasard<0>, {15, 25, 35, 45, 55, 65, 75, 85, 95}},
        {"random, seed 1", hasard<1>, {15, 25, 35, 45, 55, 65, 75, 85, 95}},
        {"random, seed 2", hasard<2>, {15, 25, 35, 45, 55, 65, 75, 85, 95}},
        {"model 5/2", modele<5, 2>, jetons},
        {"model 5/20", modele<5, 20>, jetons},
        {"model 10/4", modele<10, 4>, jetons},
        {"model 20/8", modele<20, 8>, jetons},
        {"model 50/2", modele<50, 2>, jetons},
        {"model 50/12", modele<50, 12>, jetons},
        {"model 100/6", modele<100, 6>, jetons},
        {"model 100/20", modele<100, 20>, jetons},
        {"model 200/2", modele<200, 2>, jetons},
        {"model 200/20", modele<200, 20>, jetons},
    };
    return liste;
}

const std::vector<Serie>& series() {
    static const std::vector<Serie> liste = [] {
        std::vector<Serie> resultat;
        for (const auto& [genre, regles] :
             {std::pair(Genre::ETAGE, "into later kinds"), std::pair(Genre::ECONOME, "no more than taken"),
              std::pair(Genre::LIBRE, "anything")})
            for (const int noeuds : {3, 5, 8, 12, 20, 50, 100, 200}) resultat.push_back({genre, regles, noeuds});
        return resultat;
    }();
    return liste;
}

Reseau::Net Serie::net(int i) const {
    return modeleAuHasard(genre, noeuds, 2 + (i * 7 + noeuds) % std::min(19, noeuds),
                          static_cast<std::uint64_t>(noeuds * 1000 + i));
}

}  // namespace familles

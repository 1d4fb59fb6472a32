SELECT article.product_name, sum(inventory.on_hand) AS on_hand
FROM inventory
JOIN product AS article ON inventory.product_key = article.product_key
GROUP BY article.product_name
ORDER BY article.product_name;

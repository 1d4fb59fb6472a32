SELECT "supplier country".country_name, sum(sales.amount) AS amount
FROM sales
JOIN product ON sales.product_key = product.product_key
JOIN supplier ON product.supplier_key = supplier.supplier_key
JOIN country AS "supplier country" ON supplier.country_key = "supplier country".country_key
GROUP BY "supplier country".country_name
ORDER BY "supplier country".country_name;
